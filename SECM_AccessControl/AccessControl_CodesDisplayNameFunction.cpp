#include "SECM_AccessControl/AccessControl_CodesDisplayNameFunction.h"

#include "SECM_AccessControl/Log.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <memory>

namespace {

constexpr secm::LogOrigin codesLog{"SECM_AccessControl/AccessControl_CodesDisplayNameFunction",
                                   "AccessControl_CodesDisplayNameFunction::Initialize"};

} // namespace

AccessControl_ValuesFunctionInterface* AccessControl_CodesDisplayNameFunction::CreateInstance()
{
    return new AccessControl_CodesDisplayNameFunction;
}

AccessControl_CodesDisplayNameFunction::~AccessControl_CodesDisplayNameFunction() = default;

bool AccessControl_CodesDisplayNameFunction::Initialize(std::string codeTable)
{
    const CFG_RepositoryServices* repository = CFG_Factory::GetRepositoryServices();
    if (repository == nullptr) {
        SECM_LOG(codesLog, failureLevel, "Could not create CFG instance\n");
        return false;
    }
    const std::unique_ptr<CFG_RepositoryServices> table(
        repository->GetSubTree(RWCString(secm::configuration_paths::codeTables + codeTable)));
    if (!table) {
        SECM_LOG(codesLog, traceLevel, "Couldn't find codes subtree\n");
        return false;
    }
    const std::unique_ptr<CFG_NameList> names(table->GetChildNames(""));
    const int count = names ? names->GetCount() : 0;
    for (int index = 0; index < count; ++index) {
        std::string code = names->GetName(index);
        const RWCString displayName = table->GetValueByPath(code + "\\display_name");
        if (!code.empty() && displayName.length() != 0) {
            displayNames.insert_or_assign(displayNames.end(), std::move(code),
                                          std::string(displayName.data(), displayName.length()));
        }
    }
    return true;
}

bool AccessControl_CodesDisplayNameFunction::MapValue(const std::string& code, std::string& displayName)
{
    const auto found = displayNames.find(code);
    displayName = found != displayNames.end() ? found->second : std::string();
    return true;
}
