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

/// Something about the connection that lets others than the administrators decide what is answered.
struct SECM_Concern {
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

    /// Looks through all that is stored for damage that a request may pass over, and throws when there is some. May
    /// take long. A security manager that cannot tell finds none.
    virtual void RequireSound() {}
    /// What is to be mended about the connection itself; nothing where the security manager cannot tell.
    virtual void ForEachConcern(const std::function<void(const SECM_Concern& concern)>& /*handle*/) {}
};

/// Connects, with the arguments of SecurityManagerInterface::Initialize. Throws std::runtime_error, without quoting
/// what `connectionText` keeps secret, when that fails. Null where the security manager does not offer it.
PLATFORM_EXPORT __attribute__((weak)) std::unique_ptr<SECM_ListingInterface>
openSECM_Listing(const char* connectionText, unsigned timeoutSeconds);
