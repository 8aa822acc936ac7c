#include "analysis/check/UserDirectory.h"

#include <algorithm>
#include <iterator>

namespace secm::analysis {

void UserDirectory::Add(const SECM_Member& member)
{
    const auto number = static_cast<Number>(users.size());
    const auto [user, isNewUser] = numbersOfUsers.try_emplace(member.userName, number);
    if (!isNewUser) {
        return;
    }
    users.push_back({&user->first, {}});
    knowsGroups = knowsGroups && member.groupName;
    if (member.groupName && !member.groupName->empty()) {
        const auto [group, isNewGroup] =
            numbersOfGroups.try_emplace(*member.groupName, static_cast<Number>(groupNames.size()));
        if (isNewGroup) {
            groupNames.push_back(&group->first);
            firstMembers.push_back(number);
        }
        users.back().group = group->second;
    }
}

std::vector<std::string> UserDirectory::UserNames() const
{
    std::vector<std::string> names;
    std::transform(users.begin(), users.end(), std::back_inserter(names), [](const User& user) { return *user.name; });
    return names;
}

std::vector<std::string> UserDirectory::GroupNames() const
{
    std::vector<std::string> names;
    std::transform(groupNames.begin(), groupNames.end(), std::back_inserter(names),
                   [](const std::string* name) { return *name; });
    return names;
}

std::optional<UserDirectory::Number> UserDirectory::Find(const Numbers& numbers, const std::string& name)
{
    const auto found = numbers.find(name);
    return found != numbers.end() ? std::optional(found->second) : std::nullopt;
}

} // namespace secm::analysis
