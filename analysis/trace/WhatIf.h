// Changes of a user's attributes and permissions that are tried without anything being written.
#pragma once

#include "platform/security_manager/PermissionBase.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace secm::analysis {

struct WhatIf {
    /// Takes away a permission by its name, or one resource of it.
    struct Revocation {
        std::string permission;  ///< NAME or NAME:RESOURCE.
        std::size_t revoked = 0; ///< How many permissions it takes away from the user.
    };

    std::map<std::string, std::string, std::less<>> attributes;
    std::vector<PermissionBase> grants;
    std::vector<Revocation> revocations;

    bool IsEmpty() const { return attributes.empty() && !ChangesPermissions(); }
    bool ChangesPermissions() const { return !grants.empty() || !revocations.empty(); }
};

} // namespace secm::analysis
