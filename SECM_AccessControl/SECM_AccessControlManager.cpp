// Construction, connection to the security manager, log-in requests and destruction of the manager.
#include "SECM_AccessControl/SECM_AccessControlManager.h"

#include "SECM_AccessControl/AccessControl_CodesDisplayNameFunction.h"
#include "SECM_AccessControl/AccessControl_SiteIdToIssuerFunction.h"
#include "SECM_AccessControl/Log.h"
#include "platform/security_manager/SECM_Constants.h"
#include "platform/security_manager/SMADM_Interface.h"
#include "platform/security_manager/SecurityManagerInterface.h"

namespace {

using secm::platform::administrationVersion;
using secm::platform::connectionMode;
using secm::platform::noGroup;
using secm::platform::securityManagerVersion;

constexpr const char* moduleName = "AccessControl";
constexpr const char* administrationName = "SecurityManagerAdminInterface";

constexpr secm::LogOrigin connectionLog{secm::managerSourceFile, "SECM_AccessControlManager::InitSecurityConnection"};
constexpr secm::LogOrigin requestLog{secm::managerSourceFile, "SECM_AccessControlManager::GetAccessControlFilter"};

} // namespace

SECM_AccessControlInterface::~SECM_AccessControlInterface() = default;

SECM_AccessControlInterface* SECM_AccessControlInterface::CreateInstance(std::string& repositoryName)
{
    return new SECM_AccessControlManager(repositoryName);
}

SECM_AccessControlManager::SECM_AccessControlManager(const std::string& repository) : repositoryName(repository)
{
    // Registered first, because ReadConfigurations looks up values functions by name.
    SECM_AccessControlManager::RegisterValuesFunction("SiteIdToIssuer",
                                                      &AccessControl_SiteIdToIssuerFunction::CreateInstance);
    SECM_AccessControlManager::RegisterValuesFunction("CodeToDisplayName",
                                                      &AccessControl_CodesDisplayNameFunction::CreateInstance);
    SECM_AccessControlManager::ReadConfigurations();
}

SECM_AccessControlManager::~SECM_AccessControlManager()
{
    SECM_AccessControlManager::ClearFieldDefinitions();
    valuesFunctionFactories.clear();
}

bool SECM_AccessControlManager::InitSecurityConnection(const char* connectionText, unsigned connectionValue)
{
    securityManager = getSecurityManagerInterface(moduleName, securityManagerVersion);
    if (securityManager == nullptr ||
        !securityManager->Initialize(connectionText, connectionValue, connectionMode, &callback, false)) {
        SECM_LOG(connectionLog, failureLevel, "Failed to initialize security manager for access control\n");
        if (securityManager != nullptr) {
            releaseSecurityManagerInterface(securityManager);
        }
        securityManager = nullptr;
        return false;
    }

    adminInterface = getSECM_Interface(administrationName, administrationVersion);
    if (adminInterface == nullptr || !adminInterface->Initialize(connectionText, connectionValue, connectionMode)) {
        SECM_LOG(connectionLog, failureLevel, "Failed to initialize security manager admin for access control\n");
        if (adminInterface != nullptr) {
            releaseSECM_Interface(adminInterface);
        }
        adminInterface = nullptr;
        return false;
    }
    return true;
}

std::string SECM_AccessControlManager::GetAccessControlFilter(const std::string& userName, const std::string& ipAddress)
{
    if (securityManager == nullptr) {
        SECM_LOG(requestLog, failureLevel, "Security manager is not initialized\n");
        return hideAllFilter;
    }
    SECM_LOG(requestLog, traceLevel, "Getting Access control filter for user: %s, ip: %s\n", userName.c_str(),
             ipAddress.c_str());

    callback.userName = userName;
    callback.group = noGroup;
    callback.secondGroup = noGroup;
    callback.ipAddress = ipAddress;
    securityManager->Login(&callback, false);
    if (!securityManager->IsLoggedIn(AccessControlCallback::applicationName)) {
        SECM_LOG(requestLog, userLevel,
                 "Security manager is not logged in - User does not exist, no access control will be applied\n");
        return defaultFilter;
    }

    std::string filter = GetAccessControlFilter(securityManager);
    securityManager->Logout();
    return filter;
}

std::string SECM_AccessControlManager::GetValueMultiplicityDelimiter()
{
    return valueMultiplicityDelimiter;
}

void SECM_AccessControlManager::RegisterValuesFunction(const std::string& name, ValuesFunctionFactory factory)
{
    valuesFunctionFactories.insert_or_assign(name, factory);
}
