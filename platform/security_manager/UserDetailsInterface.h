// What the security manager knows of one user.
#pragma once

#include <string>

/// Owned by the interface that gave it, and valid until that interface is asked for its next user, logs the user out,
/// or is released.
class UserDetailsInterface {
public:
    /// Writes the user's group into `groupName`; empty: the user has none. True when it was written.
    virtual bool GetGroupName(std::string& groupName) = 0;

    /// The value of the attribute `name`, valid as long as this object; null when the user does not have the attribute.
    virtual const char* GetAttribute(const char* name) = 0;

protected:
    ~UserDetailsInterface() = default;
};
