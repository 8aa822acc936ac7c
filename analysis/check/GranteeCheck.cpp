#include "analysis/check/GranteeCheck.h"

#include "analysis/check/GrantRow.h"
#include "analysis/check/MisspeltName.h"
#include "analysis/check/TextAppearance.h"
#include "platform/security_manager/SECM_Constants.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace secm::analysis {

namespace {

constexpr const char* grantTable = "security_permission";

std::string WriteInstead(const std::string& meant, const char* column, const char* table, const std::string& key)
{
    if (!HiddenFlaw(meant).empty()) { // AC057 is about the name that is meant
        return "correct the name in security_user that looks like it; else ";
    }
    return meant.empty() ? ""
                         : fmt::format("did you mean '{}'? then set {} to '{}' in {} where {}; else ", meant, column,
                                       meant, table, key);
}

std::string GrantsTo(const char* type, const std::string& name)
{
    return fmt::format("grantee_type = '{}' and grantee = '{}'", type, name);
}

// The remedy of a grantee that seems to stand for several; empty when it does not.
template <class Knows>
std::string ForSeveral(const std::string& grantee, const Knows& knows)
{
    const std::vector<std::string> parts = ListedValues(grantee);
    const auto part = std::find_if(parts.begin(), parts.end(), knows);
    if (part != parts.end()) {
        return fmt::format("a row has one grantee: write a row for '{}' and one for each of the others; else ", *part);
    }
    constexpr std::array<std::string_view, 6> forAll = {"*", "%", "all", "any", "everyone", "public"};
    return std::find(forAll.begin(), forAll.end(), Appearance(grantee)) != forAll.end()
               ? "no name stands for all users: grant to a group that they are in; else "
               : "";
}

bool IsReserved(const std::string& name)
{
    return name.empty() || name == platform::noGroup;
}

} // namespace

void GranteeCheck::Check(const SECM_GrantRow& row)
{
    const SECM_Grant& grant = row.grant;
    if (row.granteeType != "user" && row.granteeType != "group") {
        unknownTypes.Add(row.granteeType, PositionOf(grant));
    } else if (IsReserved(grant.grantee)) {
        reserved.Add(grant.grantee, PositionOf(grant));
    } else {
        CheckGrantee(grant);
    }
}

void GranteeCheck::CheckGrantee(const SECM_Grant& grant)
{
    const bool isUser = known.FindUser(grant.grantee).has_value();
    const auto group = known.FindGroup(grant.grantee);
    const bool isGroup = group.has_value();
    if (isGroup && grant.isToGroup) {
        grantedGroups.insert(*group);
    }
    if (isUser && isGroup) {
        ofBothTypes.Add(grant.grantee, PositionOf(grant));
    } else if (grant.isToGroup && known.KnowsGroups() && !isGroup) {
        (isUser ? usersAsGroups : absentGroups).Add(grant.grantee, PositionOf(grant));
    } else if (!grant.isToGroup && !isUser) {
        (isGroup ? groupsAsUsers : absentUsers).Add(grant.grantee, PositionOf(grant));
    }
}

void GranteeCheck::Check(const SECM_Attribute& attribute)
{
    if (!known.FindUser(attribute.userName)) {
        absentOwners.Add(attribute.userName, fmt::format("'{}'", attribute.name));
    }
}

void GranteeCheck::Report(FindingSink& sink) const
{
    AbsentUsers(sink);
    AbsentGroups(sink);
    WrongTypes(sink);
    AttributesOfAbsentUsers(sink);
    SameNames(sink);
    ReservedNames(sink);
    MisspeltGroups(sink);
}

void GranteeCheck::AbsentUsers(FindingSink& sink) const
{
    const std::string effect = "nobody has them now; a user who is added with this name later will have them at once";
    const std::vector<std::string> users = absentUsers.names.empty() ? std::vector<std::string>() : known.UserNames();
    for (const auto& [name, grants] : absentUsers.names) {
        sink.Warn("AC052", SecurityPlace(),
                  fmt::format("there is no user '{}', but {} has {}", name, grantTable,
                              grants.InWords("grant", " to this name")),
                  effect,
                  ForSeveral(name, [&](const std::string& part) { return known.FindUser(part).has_value(); }) +
                      WriteInstead(ProbablyMeant(name, users), "grantee", grantTable, GrantsTo("user", name)) +
                      "delete these rows, or add the user to security_user");
    }
    if (absentUsers.others.count != 0) {
        sink.Warn("AC052", SecurityPlace(),
                  fmt::format("{} has {}", grantTable,
                              absentUsers.others.InWords("grant", " to other users who do not exist")),
                  effect, "delete the rows with grantee_type = 'user' whose grantee is not in security_user");
    }
}

void GranteeCheck::AbsentGroups(FindingSink& sink) const
{
    const std::string effect = "nobody has them now; a user who is put into this group later will have them at once";
    const std::vector<std::string> groups =
        absentGroups.names.empty() ? std::vector<std::string>() : known.GroupNames();
    for (const auto& [name, grants] : absentGroups.names) {
        sink.Warn("AC053", SecurityPlace(),
                  fmt::format("no user is in the group '{}', but {} has {}", name, grantTable,
                              grants.InWords("grant", " to this group")),
                  effect,
                  ForSeveral(name, [&](const std::string& part) { return known.FindGroup(part).has_value(); }) +
                      WriteInstead(ProbablyMeant(name, groups), "grantee", grantTable, GrantsTo("group", name)) +
                      "delete these rows, or put users into the group in security_user.group_name");
    }
    if (absentGroups.others.count != 0) {
        sink.Warn("AC053", SecurityPlace(),
                  fmt::format("{} has {}", grantTable,
                              absentGroups.others.InWords("grant", " to other groups without users")),
                  effect, "delete the rows with grantee_type = 'group' whose grantee is no security_user.group_name");
    }
}

void GranteeCheck::WrongTypes(FindingSink& sink) const
{
    const auto report = [&](const CountByName& grants, const char* type, const char* right) {
        for (const auto& [name, rows] : grants.names) {
            sink.Warn("AC054", SecurityPlace(),
                      fmt::format("'{}' is a {} and no {}, but grantee_type is '{}' in {}", name, right, type, type,
                                  rows.InWords("row", fmt::format(" of {}", grantTable))),
                      fmt::format("the {} '{}' does not have these grants", right, name),
                      fmt::format("set grantee_type to '{}' in {} where {}", right, grantTable, GrantsTo(type, name)));
        }
    };
    report(groupsAsUsers, "user", "group");
    report(usersAsGroups, "group", "user");
    for (const auto& [type, rows] : unknownTypes.names) {
        sink.Warn("AC054", SecurityPlace(),
                  fmt::format("grantee_type is '{}', which is neither 'user' nor 'group', in {}", type,
                              rows.InWords("row", fmt::format(" of {}", grantTable))),
                  "nobody has these grants", "write 'user' or 'group', in small letters and without blanks");
    }
}

void GranteeCheck::AttributesOfAbsentUsers(FindingSink& sink) const
{
    const std::vector<std::string> users = absentOwners.names.empty() ? std::vector<std::string>() : known.UserNames();
    for (const auto& [name, attributes] : absentOwners.names) {
        const std::string key = fmt::format("user_name = '{}'", name);
        sink.Warn(
            "AC082", SecurityPlace(),
            fmt::format("there is no user '{}', but security_attribute has {}", name,
                        attributes.InWords("attribute", " of this name")),
            "nobody has them now; a user who is added with this name later will have them at once",
            WriteInstead(ProbablyMeant(name, users), "user_name", "security_attribute", key) +
                fmt::format("delete the rows of security_attribute where {}, or add the user to security_user", key));
    }
    if (absentOwners.others.count != 0) {
        sink.Warn("AC082", SecurityPlace(),
                  fmt::format("security_attribute has {}",
                              absentOwners.others.InWords("attribute", " of other users who do not exist")),
                  "nobody has them now; users who are added with these names later will have them at once",
                  "delete the rows of security_attribute whose user_name is not in security_user");
    }
}

void GranteeCheck::SameNames(FindingSink& sink) const
{
    for (const auto& [name, grants] : ofBothTypes.names) {
        sink.Warn("AC091", SecurityPlace(),
                  fmt::format("a user and a group are both named '{}', and {} has {}", name, grantTable,
                              grants.InWords("grant", " to this name")),
                  "only grantee_type decides whether one user or all users of the group have them: a mix-up is not "
                  "noticed",
                  "give the group another name, in security_user.group_name and in the grants");
    }
}

void GranteeCheck::ReservedNames(FindingSink& sink) const
{
    for (const auto& [name, grants] : reserved.names) {
        sink.Warn("AC092", SecurityPlace(),
                  fmt::format("grantee is {} in {}", name.empty() ? "empty" : fmt::format("'{}'", name),
                              grants.InWords("row", fmt::format(" of {}", grantTable))),
                  name.empty() ? "the grants reach nobody: an empty name is no group, and users have names"
                               : "the grants reach nobody: hosts send this name at log-in for the user's own group, so "
                                 "no group can have it",
                  "write the name of the user or the group who is to have the grants, or delete these rows");
    }
}

// A group of users to whom all is granted one by one has no grants either, so only a name near another is a mistake.
// Where many groups have no grants, groups have another purpose, and comparing all names would take long.
void GranteeCheck::MisspeltGroups(FindingSink& sink) const
{
    constexpr std::size_t mostGroups = 100;
    if (known.GroupCount() - grantedGroups.size() > mostGroups) {
        return;
    }
    for (UserDirectory::Number group = 0; group < known.GroupCount(); ++group) {
        if (grantedGroups.count(group) != 0) {
            continue;
        }
        const std::string& name = known.GroupName(group);
        const std::vector<std::string> parts = ListedValues(name);
        const auto meant = std::find_if(grantedGroups.begin(), grantedGroups.end(), [&](UserDirectory::Number other) {
            const std::string& right = known.GroupName(other);
            return (IsMisspeltName(name, right) && Appearance(name) != Appearance(right)) || // AC083 is about these
                   std::find(parts.begin(), parts.end(), right) != parts.end();
        });
        if (meant == grantedGroups.end()) {
            continue;
        }
        const std::string& right = known.GroupName(*meant);
        const std::string where = fmt::format("in security_user where group_name = '{}'", name);
        sink.Warn("AC095", SecurityPlace(),
                  fmt::format("nothing is granted to the group '{}', {} '{}'; its first user is '{}'", name,
                              parts.empty() ? "which is nearly" : "which names several groups, such as", right,
                              *known.Users()[known.FirstMembers()[group]].name),
                  fmt::format("users of this group lack what is granted to the group '{}'", right),
                  parts.empty()
                      ? fmt::format("set group_name to '{}' {}; or, if these are two groups, grant the one "
                                    "what its users need",
                                    right, where)
                      : fmt::format("a user has one group: set group_name to one of them {}, or grant to this "
                                    "group what its users need",
                                    where));
    }
}

} // namespace secm::analysis
