// Changes of a user's attributes and permissions that Explain tries. Nothing is written.
#pragma once

#include "platform/security_manager/PermissionBase.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace secm::analysis {

/// A value; copies are independent.
struct WhatIf {
    /// Takes away a permission by its name, or one resource of it.
    struct Revocation {
        std::string permission;  ///< NAME or NAME:RESOURCE.
        std::size_t revoked = 0; ///< Result in a Trace: how many permissions it takes away from the user.
    };

    /// A user, or a group.
    struct Grantee {
        bool isGroup = false;
        std::string name;
    };

    /// Whose grants and attributes change. With a group, the users in it get the attributes, and grants to the users
    /// themselves stay; with a user, grants to the user's group stay. No value: everybody's, whoever has the grants.
    std::optional<Grantee> grantee;
    bool isApplied = true; ///< Result in a Trace: the changes concern the user who was asked about.
    std::map<std::string, std::string, std::less<>> attributes; ///< The new values, by name.
    std::vector<PermissionBase> grants;                         ///< Held in addition, after the others.
    std::vector<Revocation> revocations;

    bool IsEmpty() const { return attributes.empty() && !ChangesPermissions(); }
    bool ChangesPermissions() const { return !grants.empty() || !revocations.empty(); }
};

} // namespace secm::analysis
