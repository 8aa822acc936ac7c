// One user as the security database describes them.
#pragma once

#include "platform/security_manager/UserDetailsInterface.h"

#include <map>
#include <string>
#include <utility>

namespace secm::platform {

struct SecurityUser {
    std::string groupName; ///< Empty: no group.
    std::map<std::string, std::string, std::less<>> attributes;
};

class SqlUserDetails final : public UserDetailsInterface {
public:
    explicit SqlUserDetails(SecurityUser describedUser) : user(std::move(describedUser)) {}

    bool GetGroupName(std::string& groupName) override
    {
        groupName = user.groupName;
        return true;
    }

    const char* GetAttribute(const char* name) override
    {
        const auto found = name != nullptr ? user.attributes.find(name) : user.attributes.end();
        return found != user.attributes.end() ? found->second.c_str() : nullptr;
    }

private:
    SecurityUser user;
};

} // namespace secm::platform
