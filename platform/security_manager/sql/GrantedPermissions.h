// The permissions of one user, indexed by name: a user may be granted a hundred thousand resources.
#pragma once

#include "platform/security_manager/PermissionBase.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace secm::platform {

class GrantedPermissions {
public:
    /// Call it in the order of granting.
    void Add(const PermissionBase& permission);

    /// Frees the memory that was reserved for more permissions.
    void ShrinkToFit();

    /// The first permission that is equal to `sought`; no value when there is none. Outright grants are one permission.
    std::optional<PermissionBase> FirstEqual(const PermissionBase& sought) const;

    /// Appends the resources of the permissions named `name` that hold every bit of `value`.
    void AppendResources(std::string_view name, unsigned value, std::vector<std::string>& resources) const;

private:
    struct Resource {
        std::size_t position; // of its text
        unsigned value;
        bool isConditional;
    };

    struct OfOneName {
        std::optional<PermissionBase> outright; // the sum of the grants without a resource
        std::vector<Resource> resources;
        std::string texts; // of the resources, each followed by a NUL

        const char* TextOf(const Resource& resource) const { return texts.data() + resource.position; }
    };

    std::map<std::string, OfOneName, std::less<>> byName;
};

} // namespace secm::platform
