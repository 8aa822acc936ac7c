// Looks up permissions and resources in a user's permission list.
#include "SECM_AccessControl/SECM_AccessControlManager.h"

#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SECM_Constants.h"

#include <algorithm>
#include <string_view>

namespace {

using secm::platform::defaultResource;

// Compares without computing the length first, because most names differ early. An entry's name holds no NUL.
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
    // The first equal entry decides, also when it refuses: later entries are ignored.
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
    resources.reserve(resources.size() + entries.size()); // an upper bound, smaller than the list itself
    for (const PermissionBase& entry : entries) {
        const char* resource = entry.resource();
        if (resource != nullptr && (entry.value() & permissionValue) == permissionValue &&
            IsNamed(entry, permissionName)) {
            resources.emplace_back(resource);
        }
    }
    return true;
}
