// The permissions of one user and the user's group as a list, in which the outright grants of one permission are one.
#pragma once

#include "platform/security_manager/PermissionBase.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

namespace secm::platform {

/// Two outright grants of one permission as the one permission that they are to requests. It is conditional when one of
/// them is: a condition never grants more.
inline PermissionBase AddedUp(const PermissionBase& one, const PermissionBase& other)
{
    return {one.name(), one.value() | other.value(), nullptr, one.IsConditional() || other.IsConditional()};
}

/// One thread at a time.
class PermissionsInOrder {
public:
    /// Call it in the order of granting. An outright grant, which has no resource, is added to the earlier outright
    /// grant of the same permission, and stays at that place.
    void Add(const PermissionBase& permission)
    {
        if (permission.resource() == nullptr) {
            const auto place =
                std::lower_bound(outright.begin(), outright.end(), permission.name(),
                                 [this](std::size_t index, const char* name) { return Order(index, name) < 0; });
            if (place != outright.end() && Order(*place, permission.name()) == 0) {
                list[*place] = AddedUp(list[*place], permission);
                return;
            }
            outright.insert(place, list.size());
        }
        list.push_back(permission);
    }

    /// The list, which this object then no longer has.
    std::vector<PermissionBase> Take()
    {
        outright.clear();
        return std::exchange(list, {});
    }

private:
    int Order(std::size_t index, const char* name) const { return std::strcmp(list[index].name(), name); }

    std::vector<PermissionBase> list;
    std::vector<std::size_t> outright; // where the outright grants are in `list`, sorted by name
};

} // namespace secm::platform
