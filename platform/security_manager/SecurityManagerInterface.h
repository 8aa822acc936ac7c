// The security manager: logs a user in, and answers what the user who is logged in may do.
#pragma once

#include "platform/Export.h"

#include <string>
#include <vector>

class PermissionBase;
class SECM_CallBackInterface;
class UserDetailsInterface;

/// One object serves one user at a time and one thread at a time; separate objects do not disturb one
/// another. A fault during a request is thrown (std::runtime_error) and never looks like an answer.
class PLATFORM_EXPORT SecurityManagerInterface {
public:
    SecurityManagerInterface();

    /// Connects to what `connectionText` names, within `timeoutSeconds` (0: the security manager's own limit). `mode`
    /// is "nonsecure". Calls of this object may ask `callback` until the next Initialize or the release. False: not
    /// usable; the reason is logged.
    virtual bool Initialize(const char* connectionText, unsigned timeoutSeconds, const char* mode,
                            SECM_CallBackInterface* callback, bool flag) = 0;

    /// Logs in the user whom `callback` names, in place of the user logged in before. `IsLoggedIn` tells the result.
    virtual bool Login(SECM_CallBackInterface* callback, bool flag) = 0;

    /// Whether a user is logged in for `application`, the name that the callback gave at `Login`.
    virtual bool IsLoggedIn(const char* application) = 0;

    /// Logs the user out. True when there was one.
    virtual bool Logout() = 0;

    /// Whether the user holds exactly `permission`; without a resource: whether the user holds it without restriction.
    virtual bool CheckPermission(const PermissionBase& permission) = 0;

    /// Appends, in the order of granting, the resources for which the user holds `permissionName` with every
    /// bit of `permissionValue`. False: the resources cannot be told, and nothing was appended.
    virtual bool GetResources(const std::string& permissionName, unsigned permissionValue,
                              std::vector<std::string>& resources) = 0;

    /// The user who is logged in, or null; see UserDetailsInterface for how long it is valid.
    virtual UserDetailsInterface* GetUserDetails() = 0;

    virtual ~SecurityManagerInterface();
};

/// A new interface for the caller named `applicationName`. `releaseSecurityManagerInterface` frees it; an interface
/// that is never released is freed when the library is unloaded. Null when the library does not serve
/// `interfaceVersion`.
PLATFORM_EXPORT SecurityManagerInterface* getSecurityManagerInterface(const char* applicationName,
                                                                      unsigned interfaceVersion);

/// Disconnects and frees `securityManager`. Null is ignored.
PLATFORM_EXPORT void releaseSecurityManagerInterface(SecurityManagerInterface* securityManager);
