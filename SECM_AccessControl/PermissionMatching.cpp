// Answers from a user's permission list what the composition asks.
#include "SECM_AccessControl/SECM_AccessControlManager.h"

#include "platform/security_manager/PermissionListInterface.h"

#include <algorithm>
#include <string_view>

namespace {

// What a permission for a resource that is not listed falls back to.
constexpr const char* defaultResource = "default";

// Compares while it looks for the end, for most names differ early. No entry's name holds a NUL.
bool IsNamed(const PermissionBase& entry, std::string_view name)
{
    const char* next = entry.name();
    for (const char character : name) {
        if (*next != character || character == '\0') {
            return false;
        }
        ++next;
    }
    return *next == '\0';
}

const PermissionBase* FindEqual(const std::vector<PermissionBase>& entries, const PermissionBase& permission)
{
    const auto found = std::find(entries.begin(), entries.end(), permission);
    return found != entries.end() ? &*found : nullptr;
}

} // namespace

bool SECM_AccessControlManager::CheckPermissionInList(PermissionListInterface* permissionList,
                                                      const PermissionBase& permission)
{
    const std::vector<PermissionBase>& entries = *permissionList->GetPermissions();
    // The first equal entry decides, even against the user: a later one is never looked at.
    if (const PermissionBase* entry = FindEqual(entries, permission)) {
        return permission <= *entry;
    }
    if (permission.resource() == nullptr) {
        return false;
    }
    const PermissionBase fallback(permission.name(), permission.value(), defaultResource, permission.IsConditional());
    const PermissionBase* entry = FindEqual(entries, fallback);
    return entry != nullptr && fallback <= *entry;
}

bool SECM_AccessControlManager::GetResourcesFromList(PermissionListInterface* permissionList,
                                                     const std::string& permissionName, unsigned permissionValue,
                                                     std::vector<std::string>& resources)
{
    const std::vector<PermissionBase>& entries = *permissionList->GetPermissions();
    resources.reserve(resources.size() + entries.size()); // less than the list itself takes
    for (const PermissionBase& entry : entries) {
        const char* resource = entry.resource();
        if (resource != nullptr && (entry.value() & permissionValue) == permissionValue &&
            IsNamed(entry, permissionName)) {
            resources.emplace_back(resource);
        }
    }
    return true;
}
