// Changes of a user's attributes and permissions that are tried without anything being written.
#pragma once

#include "platform/security_manager/PermissionBase.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

struct WhatIf {
    /// Of a permission by its name, or of one resource of it.
    struct Revocation {
        std::string permission;  ///< NAME or NAME:RESOURCE, as it was asked for.
        std::size_t revoked = 0; ///< How many permissions it has taken away so far.
    };

    std::map<std::string, std::string, std::less<>> attributes;
    std::vector<PermissionBase> grants;
    std::vector<Revocation> revocations;

    bool IsEmpty() const { return attributes.empty() && !ChangesPermissions(); }
    bool ChangesPermissions() const { return !grants.empty() || !revocations.empty(); }

    /// A user's permissions as they would be: without what is revoked, and what is granted behind the others.
    std::vector<PermissionBase> Applied(const std::vector<PermissionBase>& permissions);
};

/// NAME=VALUE, where the value may be empty. Nothing when `text` is not that.
std::optional<std::pair<std::string, std::string>> AttributeFrom(const std::string& text);

/// NAME:VALUE[:RESOURCE], where the value is a whole number from 0 to 4294967295 and without a resource the permission
/// is held outright. Nothing when `text` is not that.
std::optional<PermissionBase> GrantFrom(const std::string& text);
