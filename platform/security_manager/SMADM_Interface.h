// The security manager's administration interface: answers for any user by name, without a log-in.
#pragma once

#include "platform/Export.h"

class PermissionListInterface;
class UserDetailsInterface;

/// One thread at a time; separate objects do not disturb one another. A fault during a request is thrown
/// (std::runtime_error) and never looks like an answer.
class SMADM_Interface {
public:
    /// Connects, as SecurityManagerInterface::Initialize does.
    virtual bool Initialize(const char* connectionText, unsigned timeoutSeconds, const char* mode) = 0;

    /// The user named `userName`, or null when there is no such user; UserDetailsInterface says how long it is valid.
    /// `domain` is not used. The permissions of the user and of the user's group are read in the same snapshot, for the
    /// next call of GetPermissionList.
    virtual UserDetailsInterface* GetUserDetails(const char* domain, const char* userName) = 0;

    /// The permissions that are granted to exactly this user and exactly this group, in the order of granting: a new
    /// list that the caller owns, empty when nothing is granted. An empty or null group is no group. Grants of one
    /// permission without a resource are one entry, at the place of the first: it has the bits of all, and is
    /// conditional when one of them is. The first call after GetUserDetails gives what was read with that user, when it
    /// asks for the same user and the user's group; any other call reads the current grants.
    virtual PermissionListInterface* GetPermissionList(const char* group, const char* user) = 0;

    virtual ~SMADM_Interface() = default;
};

// Without C++ name mangling, because they are looked up by name in a library that is opened at its first use.
extern "C" {

/// A new interface for the caller named `applicationName`. `releaseSECM_Interface` frees it; an interface that is never
/// released is freed when the library is unloaded. Null when the library does not serve `interfaceVersion`. Throws
/// std::runtime_error when the administration library cannot be opened.
PLATFORM_EXPORT SMADM_Interface* getSECM_Interface(const char* applicationName, unsigned interfaceVersion);

/// Disconnects and frees `administration`. Null is ignored.
PLATFORM_EXPORT void releaseSECM_Interface(SMADM_Interface* administration);
}
