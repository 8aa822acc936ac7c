// Changes of a user's attributes and permissions that Explain tries. Nothing is written.
#pragma once

#include "platform/security_manager/PermissionBase.h"

#include <cstddef>
#include <map>
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

    std::map<std::string, std::string, std::less<>> attributes; ///< The new values, by name.
    std::vector<PermissionBase> grants;                         ///< Held in addition, after the others.
    std::vector<Revocation> revocations;

    bool IsEmpty() const { return attributes.empty() && !ChangesPermissions(); }
    bool ChangesPermissions() const { return !grants.empty() || !revocations.empty(); }
};

} // namespace secm::analysis
