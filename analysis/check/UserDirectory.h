#pragma once

#include "platform/security_manager/SECM_Listing.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace secm::analysis {

/// The names of all users and of their groups, by number. Memory grows with the users.
class UserDirectory {
public:
    using Number = std::uint32_t;

    struct User {
        const std::string* name;
        std::optional<Number> group; ///< No value: none, or the security manager does not list groups.
    };

    void Add(const SECM_Member& member);

    const std::vector<User>& Users() const { return users; }
    /// The first user of each group.
    const std::vector<Number>& FirstMembers() const { return firstMembers; }
    const std::string& GroupName(Number group) const { return *groupNames.at(group); }
    std::size_t GroupCount() const { return groupNames.size(); }

    std::optional<Number> FindUser(const std::string& name) const { return Find(numbersOfUsers, name); }
    std::optional<Number> FindGroup(const std::string& name) const { return Find(numbersOfGroups, name); }
    /// The names, in the order of adding.
    std::vector<std::string> UserNames() const;
    std::vector<std::string> GroupNames() const;
    /// False: the security manager does not list groups, so nothing is known of them.
    bool KnowsGroups() const { return knowsGroups; }

private:
    using Numbers = std::unordered_map<std::string, Number>;

    static std::optional<Number> Find(const Numbers& numbers, const std::string& name);

    Numbers numbersOfUsers; // the lists point to their keys
    Numbers numbersOfGroups;
    std::vector<User> users;
    std::vector<const std::string*> groupNames;
    std::vector<Number> firstMembers;
    bool knowsGroups = true;
};

} // namespace secm::analysis
