#include "analysis/check/NameCheck.h"

#include "analysis/check/GrantRow.h"
#include "analysis/check/TextAppearance.h"
#include "platform/security_manager/SECM_Constants.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace secm::analysis {

namespace {

// Finds names with the same appearance by the hashes of their appearances, so that not all appearances are kept.
template <class NameOf>
void NamesAlike(const char* noun, std::size_t count, const NameOf& nameOf, FindingSink& sink)
{
    std::vector<std::pair<std::size_t, std::size_t>> looks; // the hash and the number of the name
    looks.reserve(count);
    for (std::size_t number = 0; number < count; ++number) {
        looks.emplace_back(std::hash<std::string>()(Appearance(nameOf(number))), number);
    }
    std::sort(looks.begin(), looks.end());
    FirstAndCount pairs;
    for (std::size_t at = 1; at < looks.size(); ++at) {
        const std::string& one = nameOf(looks[at - 1].second);
        const std::string& other = nameOf(looks[at].second);
        if (looks[at - 1].first == looks[at].first && Appearance(one) == Appearance(other)) {
            pairs.Add(fmt::format("'{}' and '{}'", one, other));
        }
    }
    if (pairs.count != 0) {
        sink.Warn(
            "AC083", SecurityPlace(),
            fmt::format("the names of {}s differ only by letter case, blanks or characters that look alike in {}", noun,
                        pairs.InWords("pair")),
            "they are different to the security manager: the one has none of the other's grants, and people who "
            "grant or log in take one for the other",
            fmt::format("if they are the same {}, keep one name and delete the rows of the other; else rename one",
                        noun));
    }
}

} // namespace

void NameCheck::Check(const SECM_Member& member)
{
    const std::string row = fmt::format("that of the user '{}'", member.userName);
    if (member.userName.empty() || member.groupName == platform::noGroup) {
        reservedNames.Add(row);
    }
    CheckText("security_user.user_name", member.userName, "that of a user");
    CheckText("security_user.group_name", member.groupName.value_or(""), row);
}

void NameCheck::Check(const SECM_Grant& grant)
{
    CheckText("security_permission.grantee", grant.grantee, PositionOf(grant));
    if (ResourceOf(grant) != nullptr) {
        CheckText("security_permission.resource", ResourceOf(grant), PositionOf(grant));
    }
}

void NameCheck::Check(const SECM_Attribute& attribute)
{
    const std::string row = fmt::format("that of the user '{}'", attribute.userName);
    CheckText("security_attribute.attribute_name", attribute.name, row);
    CheckText("security_attribute.attribute_value", attribute.value, row);
}

void NameCheck::CheckText(const char* column, const std::string& text, const std::string& row)
{
    const std::string flaw = HiddenFlaw(text);
    if (flaw.empty()) {
        return;
    }
    FlawedTexts& found = flaws[{column, flaw}];
    if (found.texts.count == 0) {
        const std::string cleaned = Cleaned(text);
        found.remedy = cleaned != text ? fmt::format("set {} to '{}' in this row", column, cleaned)
                                       : "type it again, with ordinary blanks and letters of one alphabet";
    }
    found.texts.Add(fmt::format("{}, which is '{}'", row, text));
}

void NameCheck::Report(const UserDirectory& directory, FindingSink& sink) const
{
    for (const auto& [place, found] : flaws) {
        sink.Warn("AC057", SecurityPlace(),
                  fmt::format("{} has {} in {}", place.first, place.second, found.texts.InWords("row")),
                  "it looks like the text without it, but is another: it matches no grant, no attribute and no record "
                  "that has the text without it",
                  found.remedy + (found.texts.count > 1 ? "; correct the others alike" : ""));
    }
    if (reservedNames.count != 0) {
        sink.Warn("AC092", SecurityPlace(),
                  fmt::format("user_name is empty, or group_name is '{}', in {}", platform::noGroup,
                              reservedNames.InWords("row", " of security_user")),
                  "hosts that do not know their user send the empty name, and send this group for the user's own "
                  "group: what is granted to either may reach people who were not meant",
                  "give the user a name and a group of another name, or delete the row");
    }
    NamesAlike(
        "user", directory.Users().size(),
        [&](std::size_t number) -> const std::string& { return *directory.Users()[number].name; }, sink);
    NamesAlike(
        "group", directory.GroupCount(),
        [&](std::size_t number) -> const std::string& {
            return directory.GroupName(static_cast<UserDirectory::Number>(number));
        },
        sink);
}

} // namespace secm::analysis
