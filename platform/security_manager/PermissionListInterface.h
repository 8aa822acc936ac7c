// The permissions of one user and one group, in the order in which they were granted.
#pragma once

#include "platform/security_manager/PermissionBase.h"

#include <vector>

/// Owned by the caller who got it, and deleted through this interface.
class PermissionListInterface {
public:
    /// Never null; valid while the list lives.
    virtual const std::vector<PermissionBase>* GetPermissions() = 0;

    virtual ~PermissionListInterface() = default;
};
