// What tools ask of a security manager beyond requests: lists of its users and grants, and what it would refuse. The
// module does not use this, so a security manager of a host's own may leave it out.
#pragma once

#include "platform/Export.h"
#include "platform/security_manager/PermissionBase.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

/// One permission as it was granted.
struct SECM_Grant {
    long long position; ///< Identifies the grant; grants are listed by position.
    bool isToGroup;     ///< False: to a user.
    std::string grantee;
    PermissionBase permission;
};

/// One grant as it is stored, also when requests refuse it or when it reaches nobody.
struct SECM_GrantRow {
    SECM_Grant grant;        ///< The texts that can be read. When there is a fault, the permission has no name.
    std::string fault;       ///< Why every request of a user who is granted it fails; empty: they do not.
    std::string granteeType; ///< As stored. Only "user" and "group" reach anybody.
    bool isOddlyConditional; ///< is_conditional is neither 0 nor 1; it counts as 1.
};

/// One user with the group.
struct SECM_Member {
    std::string userName;
    std::optional<std::string> groupName; ///< Empty: no group. No value: the security manager does not list groups.
};

/// One attribute of one user.
struct SECM_Attribute {
    std::string userName;
    std::string name;
    std::string value;
};

/// A property of the connection that lets others change the answers.
struct SECM_Risk {
    std::string problem;
    std::string effect;
    std::string remedy;
};

/// Each operation calls `handle` for one row after another, in constant memory. An exception of `handle` ends it and
/// passes through. Throws std::runtime_error when it cannot go on; it never leaves rows out. One thread at a time.
class SECM_ListingInterface {
public:
    virtual ~SECM_ListingInterface() = default;

    /// The names of all users, each once, in an order that stays the same while nobody changes them.
    virtual void ForEachUser(const std::function<void(const std::string& userName)>& handle) = 0;
    /// All grants, by position.
    virtual void ForEachGrant(const std::function<void(const SECM_Grant& grant)>& handle) = 0;
    /// All attributes, those of one user together.
    virtual void ForEachAttribute(const std::function<void(const SECM_Attribute& attribute)>& handle) = 0;

    /// Reads everything that is stored and throws when it is damaged, even where requests would not notice. May take
    /// long. Does nothing when the security manager cannot check this.
    virtual void CheckIntegrity() {}
    /// The risks of the connection that the security manager can detect.
    virtual void ForEachRisk(const std::function<void(const SECM_Risk& risk)>& /*handle*/) {}
    /// The grants to exactly this user and to exactly this group, by position; an empty group is no group.
    virtual void ForEachGrantTo(const std::string& userName, const std::string& groupName,
                                const std::function<void(const SECM_Grant& grant)>& handle)
    {
        ForEachGrant([&](const SECM_Grant& grant) {
            if (grant.isToGroup ? grant.grantee == groupName && !groupName.empty() : grant.grantee == userName) {
                handle(grant);
            }
        });
    }
    /// The grants of exactly this permission, by position.
    virtual void ForEachGrantOf(const std::string& permissionName,
                                const std::function<void(const SECM_Grant& grant)>& handle)
    {
        ForEachGrant([&](const SECM_Grant& grant) {
            if (grant.permission.name() == permissionName) {
                handle(grant);
            }
        });
    }
    /// The users of ForEachUser with their groups, in its order. By default without the groups.
    virtual void ForEachMember(const std::function<void(const SECM_Member& member)>& handle)
    {
        ForEachUser([&](const std::string& userName) { handle({userName, std::nullopt}); });
    }
    /// All grants by position, also those for which ForEachGrant throws. By default those of ForEachGrant.
    virtual void ForEachGrantRow(const std::function<void(const SECM_GrantRow& row)>& handle)
    {
        ForEachGrant([&](const SECM_Grant& grant) { handle({grant, "", grant.isToGroup ? "group" : "user", false}); });
    }
};

/// Connects, with the arguments of SecurityManagerInterface::Initialize. Throws std::runtime_error, without quoting
/// secrets of `connectionText`, when that fails. A weak symbol: null where the security manager does not offer it.
PLATFORM_EXPORT __attribute__((weak)) std::unique_ptr<SECM_ListingInterface>
openSECM_Listing(const char* connectionText, unsigned timeoutSeconds);

/// The connection text without secrets, for messages and reports. Throws std::bad_alloc alone. Any thread may call. A
/// weak symbol: null where the security manager does not offer it.
PLATFORM_EXPORT __attribute__((weak)) std::string shownSECM_Connection(const char* connectionText);

/// Throws the std::runtime_error that a request throws when `permission` is granted to its user and
/// `SECM_ALLOWED_RESOURCES` does not allow the resource; in place of the row, the text names the permission. Throws as
/// a request does when the variable is no regular expression. Does nothing while it is unset. Any thread may call. A
/// weak symbol: null where the security manager does not offer it.
PLATFORM_EXPORT __attribute__((weak)) void requireSECM_AllowedGrant(const PermissionBase& permission);

/// Likewise when the user has the attribute `name` with `value` and `SECM_ALLOWED_ATTRIBUTES` does not allow the value.
PLATFORM_EXPORT __attribute__((weak)) void requireSECM_AllowedAttribute(const std::string& name,
                                                                        const std::string& value);
