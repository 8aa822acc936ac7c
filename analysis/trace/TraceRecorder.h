// Writes one trace, from what the steps of a request and their decorators report in the order in which they happen.
#pragma once

#include "analysis/definitions/Rules.h"
#include "analysis/trace/Trace.h"

#include <string>
#include <vector>

class PermissionBase;
class UserDetailsInterface;

namespace secm::analysis {

class TraceRecorder {
public:
    /// `ofRules` must live as long.
    explicit TraceRecorder(const RepositoryRules& ofRules) : rules(ofRules) {}

    void Begin(const Request& request);

    /// The trace of the request since Begin, which gave `filter`. Afterwards the recorder is empty.
    Trace Finish(std::string filter, const WhatIf& tried);

    // What the security manager answers.
    void AddUser(UserDetailsInterface* user); ///< Null: nothing is told of the user, who is known.
    void AddMissingPermissionList() { lacksPermissions = true; }
    void AddPermission(const PermissionBase& permission, bool isHeld); ///< Opens the next field.
    void AddResources(const std::vector<std::string>& resources, bool areTold);
    void AddAttribute(const char* name, const char* value);

    // What the steps of the open field make of it.
    void BeginStep() { attributes.clear(); }
    void AddValue(std::string resource, const std::string& value); ///< With the attribute asked for since BeginStep.
    std::size_t ValueCount() const { return trace.fields.back().values.size(); }
    ConditionTrace& AddCondition(const ConditionRule& rule);
    ConditionTrace& OpenCondition() { return trace.fields.back().conditions.back(); }
    std::size_t ConditionCount() const { return trace.fields.back().conditions.size(); }
    std::vector<AttributeTrace> TakeAttributes(); ///< Asked for since BeginStep.

private:
    Outcome OutcomeOf(const std::string& filter) const;

    const RepositoryRules& rules;
    Trace trace;
    std::vector<AttributeTrace> attributes;
    bool isKnown = false;
    bool lacksPermissions = false;
};

} // namespace secm::analysis
