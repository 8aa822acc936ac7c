// Changes of a user's attributes and permissions that are tried without anything being written.
#pragma once

#include "analysis/Export.h"
#include "platform/security_manager/PermissionBase.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
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

/// NAME=VALUE, where the value may be empty. Nothing when `text` is not that.
SECM_ANALYSIS_EXPORT std::optional<std::pair<std::string, std::string>> AttributeFrom(const std::string& text);

/// NAME:VALUE[:RESOURCE], where the value is a whole number from 0 to 4294967295 and without a resource the permission
/// is held outright. Nothing when `text` is not that.
SECM_ANALYSIS_EXPORT std::optional<PermissionBase> GrantFrom(const std::string& text);

} // namespace secm::analysis
