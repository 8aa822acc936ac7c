// For tools that look at a security manager's users as a whole. The module needs none of it, so a security manager of a
// host's own may leave it out.
#pragma once

#include "platform/Export.h"
#include "platform/security_manager/PermissionBase.h"

#include <functional>
#include <memory>
#include <string>

/// One permission as it was granted.
struct SECM_Grant {
    long long position; ///< Names the grant: grants come in the order of their positions.
    bool isToGroup;     ///< Else to a user.
    std::string grantee;
    PermissionBase permission;
};

/// One attribute of one user.
struct SECM_Attribute {
    std::string userName;
    std::string name;
    std::string value;
};

/// A property of the connection that lets outsiders change the answers.
struct SECM_Risk {
    std::string problem;
    std::string effect;
    std::string remedy;
};

/// Each operation calls `handle` for one row after the other, in constant memory; what `handle` throws ends it and
/// passes through. Throws std::runtime_error when it cannot go on, and never leaves rows out. One thread at a time.
class SECM_ListingInterface {
public:
    virtual ~SECM_ListingInterface() = default;

    /// The names of all users, each once, in an order that stays the same while nobody changes them.
    virtual void ForEachUser(const std::function<void(const std::string& userName)>& handle) = 0;
    /// All grants, by position.
    virtual void ForEachGrant(const std::function<void(const SECM_Grant& grant)>& handle) = 0;
    /// All attributes, those of one user together.
    virtual void ForEachAttribute(const std::function<void(const SECM_Attribute& attribute)>& handle) = 0;

    /// Reads everything that is stored and throws when it is damaged, also where requests would not notice. May take
    /// long. A security manager that cannot check this does nothing.
    virtual void CheckIntegrity() {}
    /// The risks of the connection that the security manager can detect.
    virtual void ForEachRisk(const std::function<void(const SECM_Risk& risk)>& /*handle*/) {}
};

/// Connects, with the arguments of SecurityManagerInterface::Initialize. Throws std::runtime_error, without quoting
/// what `connectionText` keeps secret, when that fails. Null where the security manager does not offer it.
PLATFORM_EXPORT __attribute__((weak)) std::unique_ptr<SECM_ListingInterface>
openSECM_Listing(const char* connectionText, unsigned timeoutSeconds);

PLATFORM_EXPORT __attribute__((weak)) void requireSECM_AllowedGrant(const PermissionBase& permission);
PLATFORM_EXPORT __attribute__((weak)) void requireSECM_AllowedAttribute(const std::string& name,
                                                                        const std::string& value);
