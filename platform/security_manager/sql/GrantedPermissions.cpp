#include "platform/security_manager/sql/GrantedPermissions.h"

#include "platform/security_manager/PermissionsInOrder.h"

#include <algorithm>
#include <cstring>

namespace secm::platform {

void GrantedPermissions::Add(const PermissionBase& permission)
{
    const std::string_view name = permission.name();
    auto found = byName.find(name);
    if (found == byName.end()) {
        found = byName.try_emplace(std::string(name)).first;
    }
    OfOneName& granted = found->second;
    if (permission.resource() != nullptr) {
        granted.resources.push_back({granted.texts.size(), permission.value(), permission.IsConditional()});
        granted.texts.append(permission.resource()).push_back('\0');
    } else {
        granted.outright = granted.outright ? AddedUp(*granted.outright, permission) : permission;
    }
}

void GrantedPermissions::ShrinkToFit()
{
    for (auto& [name, granted] : byName) {
        granted.resources.shrink_to_fit();
        granted.texts.shrink_to_fit();
    }
}

std::optional<PermissionBase> GrantedPermissions::FirstEqual(const PermissionBase& sought) const
{
    const auto found = byName.find(std::string_view(sought.name()));
    if (found == byName.end()) {
        return std::nullopt;
    }
    const OfOneName& granted = found->second;
    if (sought.resource() == nullptr) {
        return granted.outright;
    }
    const auto equal = std::find_if(granted.resources.begin(), granted.resources.end(), [&](const Resource& resource) {
        return std::strcmp(granted.TextOf(resource), sought.resource()) == 0;
    });
    if (equal == granted.resources.end()) {
        return std::nullopt;
    }
    return PermissionBase(sought.name(), equal->value, sought.resource(), equal->isConditional);
}

void GrantedPermissions::AppendResources(std::string_view name, unsigned value,
                                         std::vector<std::string>& resources) const
{
    const auto found = byName.find(name);
    if (found == byName.end()) {
        return;
    }
    const OfOneName& granted = found->second;
    resources.reserve(resources.size() + granted.resources.size());
    for (const Resource& resource : granted.resources) {
        if ((resource.value & value) == value) {
            resources.emplace_back(granted.TextOf(resource));
        }
    }
}

} // namespace secm::platform
