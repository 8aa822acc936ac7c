// Builds the trace of one request from what the module's steps and the decorators report while it runs.
#pragma once

#include "analysis/definitions/Rules.h"
#include "analysis/trace/Trace.h"

#include <cstddef>
#include <string>
#include <vector>

class PermissionBase;
class UserDetailsInterface;

namespace secm::analysis {

class TraceRecorder {
public:
    /// `ofRules` must outlive the recorder.
    explicit TraceRecorder(const RepositoryRules& ofRules) : rules(ofRules) {}

    /// Forgets an earlier request, also one that ended in an exception. `firstField` is the index in the rules of the
    /// first field that the module will ask about.
    void Begin(const Request& request, std::size_t firstField = 0);

    /// The trace of the request since Begin. `filter` is what the request gave.
    Trace Finish(std::string filter, const WhatIf& tried);

    // What the security manager answers.
    void AddUser(UserDetailsInterface* user); ///< Null: the user is known, but there are no details.
    void AddMissingPermissionList() { lacksPermissions = true; }
    void AddPermission(const PermissionBase& permission, bool isHeld); ///< Opens the next field.
    void AddResources(const std::vector<std::string>& resources, bool areTold);
    void AddAttribute(const char* name, const char* value);

    // What the module's steps make of it, for the field that AddPermission opened last.
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
    std::size_t first = 0; // the first field of the trace
    bool isKnown = false;
    bool lacksPermissions = false;
};

} // namespace secm::analysis
