#include "analysis/trace/TracingManager.h"

#include <cstddef>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace secm::analysis {
namespace {

// Leaves a manager the definitions from an index on, until this object is destroyed.
class LaterDefinitions {
public:
    using Definitions = std::vector<std::unique_ptr<FieldDefinition>>;

    LaterDefinitions(Definitions& ofManager, std::size_t first) : definitions(ofManager)
    {
        const auto begin = definitions.begin() + static_cast<std::ptrdiff_t>(first);
        earlier.assign(std::make_move_iterator(definitions.begin()), std::make_move_iterator(begin));
        definitions.erase(definitions.begin(), begin);
    }
    // The definitions have kept their capacity, so this allocates nothing.
    ~LaterDefinitions()
    {
        definitions.insert(definitions.begin(), std::make_move_iterator(earlier.begin()),
                           std::make_move_iterator(earlier.end()));
    }
    LaterDefinitions(const LaterDefinitions&) = delete;
    LaterDefinitions& operator=(const LaterDefinitions&) = delete;

private:
    Definitions& definitions;
    Definitions earlier;
};

} // namespace

Tracer::TracingManager::TracingManager(const std::string& repository, const DefinitionReader& definitions,
                                       WhatIf triedChanges)
    : RulesManager(repository, definitions), tried(std::move(triedChanges)), recorder(Rules())
{
}

bool Tracer::TracingManager::InitSecurityConnection(const char* connectionText, unsigned connectionValue)
{
    tracedSecurityManager.reset(); // Explain refuses while there is none
    if (!SECM_AccessControlManager::InitSecurityConnection(connectionText, connectionValue)) {
        return false;
    }
    if (!tried.IsEmpty()) {
        changedSecurityManager.emplace(*securityManager, *adminInterface, static_cast<ListMatching&>(*this), tried);
        changedAdministration.emplace(*adminInterface, tried);
        securityManager = &*changedSecurityManager;
        adminInterface = &*changedAdministration;
    }
    tracedSecurityManager.emplace(*securityManager, recorder);
    tracedAdministration.emplace(*adminInterface, recorder);
    securityManager = &*tracedSecurityManager;
    adminInterface = &*tracedAdministration;
    return true;
}

Trace Tracer::TracingManager::ExplainFrom(std::size_t firstField, const Request& request)
{
    if (!tracedSecurityManager) {
        throw std::runtime_error("there is no connection to the security manager; connect the tracer first");
    }
    for (WhatIf::Revocation& revocation : tried.revocations) {
        revocation.revoked = 0; // a user who is not known gets no count
    }
    tried.isApplied = !tried.grantee;
    recorder.Begin(request, firstField);
    std::string filter = request.withoutLogin ? GetAccessControlFilter(request.userName)
                                              : GetAccessControlFilter(request.userName, request.ipAddress);
    return recorder.Finish(std::move(filter), tried);
}

Trace Tracer::TracingManager::ExplainAll(const Request& request)
{
    Trace trace = Explain(request);
    std::size_t asked = trace.fields.size();
    bool isHidden = trace.answer.outcome == Outcome::hideAll && asked != 0;
    while (isHidden && asked < fieldDefinitions.size()) {
        const LaterDefinitions scope(fieldDefinitions, asked);
        Trace rest = ExplainFrom(asked, request);
        asked += rest.fields.size();
        isHidden = rest.answer.outcome == Outcome::hideAll && !rest.fields.empty();
        trace.later.insert(trace.later.end(), std::make_move_iterator(rest.fields.begin()),
                           std::make_move_iterator(rest.fields.end()));
    }
    return trace;
}

void Tracer::TracingManager::ReplaceSingleValueForUser(std::string& value, const FieldDefinition& field,
                                                       UserDetailsInterface* userDetails)
{
    std::string resource = value;
    recorder.BeginStep();
    SECM_AccessControlManager::ReplaceSingleValueForUser(value, field, userDetails);
    recorder.AddValue(std::move(resource), value);
}

void Tracer::TracingManager::ReplaceSingleValue(std::string& value, const FieldDefinition& field,
                                                SecurityManagerInterface* secmInterface)
{
    const std::size_t before = recorder.ValueCount();
    recorder.BeginStep();
    SECM_AccessControlManager::ReplaceSingleValue(value, field, secmInterface);
    if (recorder.ValueCount() == before) { // there are no details of the user
        recorder.AddValue(value, value);
    }
}

std::string Tracer::TracingManager::HandleSingleConditionForUser(const ConditionDefinition& condition,
                                                                 const std::vector<std::string>& values,
                                                                 UserDetailsInterface* userDetails)
{
    recorder.AddCondition(RuleOf(condition));
    recorder.BeginStep();
    std::string text = SECM_AccessControlManager::HandleSingleConditionForUser(condition, values, userDetails);
    recorder.OpenCondition().attributes = recorder.TakeAttributes();
    recorder.OpenCondition().text = text;
    return text;
}

std::string Tracer::TracingManager::HandleSingleCondition(const ConditionDefinition& condition,
                                                          const std::vector<std::string>& values,
                                                          SecurityManagerInterface* secmInterface)
{
    const std::size_t before = recorder.ConditionCount();
    std::string text = SECM_AccessControlManager::HandleSingleCondition(condition, values, secmInterface);
    if (recorder.ConditionCount() == before) {
        ConditionTrace& untold = recorder.AddCondition(RuleOf(condition));
        untold.text = text;
        untold.userIsTold = false;
    }
    return text;
}

std::string Tracer::TracingManager::ApplyValuesFunction(const std::string& value, const ConditionDefinition& condition)
{
    std::string mapped = SECM_AccessControlManager::ApplyValuesFunction(value, condition);
    if (condition.valuesFunction) {
        recorder.OpenCondition().mapped.push_back(mapped);
    }
    return mapped;
}

bool Tracer::TracingManager::CheckPermissionInList(PermissionListInterface* permissionList,
                                                   const PermissionBase& permission)
{
    const bool isHeld = SECM_AccessControlManager::CheckPermissionInList(permissionList, permission);
    recorder.AddPermission(permission, isHeld);
    return isHeld;
}

bool Tracer::TracingManager::GetResourcesFromList(PermissionListInterface* permissionList,
                                                  const std::string& permissionName, unsigned permissionValue,
                                                  std::vector<std::string>& resources)
{
    const bool areTold =
        SECM_AccessControlManager::GetResourcesFromList(permissionList, permissionName, permissionValue, resources);
    recorder.AddResources(resources, areTold);
    return areTold;
}

bool Tracer::TracingManager::Holds(PermissionListInterface& list, const PermissionBase& permission)
{
    return SECM_AccessControlManager::CheckPermissionInList(&list, permission);
}

bool Tracer::TracingManager::Resources(PermissionListInterface& list, const std::string& permissionName,
                                       unsigned permissionValue, std::vector<std::string>& resources)
{
    return SECM_AccessControlManager::GetResourcesFromList(&list, permissionName, permissionValue, resources);
}

Tracer::Tracer(const std::string& repository, WhatIf tried)
    : Tracer(std::make_unique<TracingManager>(repository, DefinitionReader(), std::move(tried)))
{
}

Tracer::Tracer(std::unique_ptr<TracingManager> tracing) : manager(std::move(tracing)) {}

std::vector<Tracer> Tracer::OfRepositories(const std::vector<std::string>& repositories)
{
    const DefinitionReader definitions;
    std::vector<Tracer> tracers;
    tracers.reserve(repositories.size());
    for (const std::string& repository : repositories) {
        tracers.push_back(Tracer(std::make_unique<TracingManager>(repository, definitions, WhatIf())));
    }
    return tracers;
}

Tracer::~Tracer() = default;
Tracer::Tracer(Tracer&& other) noexcept = default;
Tracer& Tracer::operator=(Tracer&& other) noexcept = default;

bool Tracer::Connect(const char* connectionText, unsigned timeoutSeconds)
{
    return manager->InitSecurityConnection(connectionText, timeoutSeconds);
}

Trace Tracer::Explain(const Request& request)
{
    return manager->Explain(request);
}

Trace Tracer::ExplainAll(const Request& request)
{
    return manager->ExplainAll(request);
}

const RepositoryRules& Tracer::Rules() const
{
    return manager->Rules();
}

} // namespace secm::analysis
