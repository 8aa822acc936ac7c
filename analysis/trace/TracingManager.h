// The manager behind a tracer. The module composes, and each of its steps is reported to a recorder.
#pragma once

#include "analysis/definitions/RulesManager.h"
#include "analysis/trace/TraceRecorder.h"
#include "analysis/trace/Tracer.h"
#include "analysis/trace/TracingDecorators.h"
#include "analysis/trace/WhatIfDecorators.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace secm::analysis {

class Tracer::TracingManager final : public RulesManager, private ListMatching {
public:
    /// Does not keep `definitions`.
    TracingManager(const std::string& repository, const DefinitionReader& definitions, WhatIf triedChanges);

    bool InitSecurityConnection(const char* connectionText, unsigned connectionValue) override;
    Trace Explain(const Request& request) { return ExplainFrom(0, request); }
    Trace ExplainAll(const Request& request);

protected:
    std::string HandleSingleConditionForUser(const ConditionDefinition& condition,
                                             const std::vector<std::string>& values,
                                             UserDetailsInterface* userDetails) override;
    std::string HandleSingleCondition(const ConditionDefinition& condition, const std::vector<std::string>& values,
                                      SecurityManagerInterface* secmInterface) override;
    void ReplaceSingleValueForUser(std::string& value, const FieldDefinition& field,
                                   UserDetailsInterface* userDetails) override;
    void ReplaceSingleValue(std::string& value, const FieldDefinition& field,
                            SecurityManagerInterface* secmInterface) override;
    std::string ApplyValuesFunction(const std::string& value, const ConditionDefinition& condition) override;
    bool CheckPermissionInList(PermissionListInterface* permissionList, const PermissionBase& permission) override;
    bool GetResourcesFromList(PermissionListInterface* permissionList, const std::string& permissionName,
                              unsigned permissionValue, std::vector<std::string>& resources) override;

private:
    Trace ExplainFrom(std::size_t firstField, const Request& request);

    bool Holds(PermissionListInterface& list, const PermissionBase& permission) override;
    bool Resources(PermissionListInterface& list, const std::string& permissionName, unsigned permissionValue,
                   std::vector<std::string>& resources) override;

    WhatIf tried;
    TraceRecorder recorder;
    // None before InitSecurityConnection. The module calls the traced ones; they call the changed ones, which exist
    // only when something is tried.
    std::optional<TracedSecurityManager> tracedSecurityManager;
    std::optional<TracedAdministration> tracedAdministration;
    std::optional<ChangedSecurityManager> changedSecurityManager;
    std::optional<ChangedAdministration> changedAdministration;
};

} // namespace secm::analysis
