#pragma once

#include "platform/security_manager/PermissionBase.h"
#include "tests/Cases.h"

namespace secm::testing {

/// From NAME:VALUE:RESOURCE[:conditional], where the resource "null" is none.
inline PermissionBase PermissionFrom(const std::string& text)
{
    const Lines parts = Split(text, ":");
    return {parts.at(0).c_str(), static_cast<unsigned>(std::stoul(parts.at(1))),
            parts.at(2) == "null" ? nullptr : parts.at(2).c_str(), parts.size() > 3};
}

/// From such texts between ";".
inline std::vector<PermissionBase> PermissionsFrom(const std::string& texts)
{
    std::vector<PermissionBase> permissions;
    for (const std::string& text : texts.empty() ? Lines() : Split(texts, ";")) {
        permissions.push_back(PermissionFrom(text));
    }
    return permissions;
}

inline std::string Shown(const PermissionBase& permission)
{
    return std::string(permission.name()) + ":" + std::to_string(permission.value()) + ":" +
           (permission.resource() != nullptr ? permission.resource() : "null") +
           (permission.IsConditional() ? ":conditional" : "");
}

} // namespace secm::testing
