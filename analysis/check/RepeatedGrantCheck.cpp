#include "analysis/check/RepeatedGrantCheck.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/GrantRow.h"
#include "analysis/check/TextAppearance.h"

#include <fmt/core.h>

#include <algorithm>
#include <functional>
#include <string>
#include <tuple>

namespace secm::analysis {

namespace {

std::size_t HashOf(const std::string& text, std::size_t permission)
{
    return std::hash<std::string>()(fmt::format("{} {}", permission, text));
}

template <class Iterator, class IsSame>
Iterator EndOfEqual(Iterator first, Iterator last, IsSame isSame)
{
    return std::find_if_not(first, last, [&](const auto& row) { return isSame(*first, row); });
}

} // namespace

void RepeatedGrantCheck::Check(const SECM_Grant& grant, std::size_t permission)
{
    const char* resource = ResourceOf(grant);
    const std::size_t resourceHash = HashOf(resource != nullptr ? resource : "", permission);
    const std::uint32_t bits = grant.permission.value();
    rows.push_back({HashOf((grant.isToGroup ? "group " : "user ") + grant.grantee, permission), resourceHash,
                    grant.position, bits, resource == nullptr, grant.permission.IsConditional(),
                    asked.HeldBy(permission, bits) != 0});
    // AC057 and AC089 are about some of these texts. A values function knows only one of two codes that look alike, and
    // AC049, AC050 and AC058 are about the other.
    if (resource != nullptr && !asked.At(permission).isMapped && Appearance(resource) != ownValue &&
        HiddenFlaw(resource).empty()) {
        CompareAppearance(grant, permission, resourceHash);
    }
}

void RepeatedGrantCheck::CompareAppearance(const SECM_Grant& grant, std::size_t permission, std::size_t resourceHash)
{
    const auto [first, isNew] = firstOfAppearance.try_emplace(HashOf(Appearance(ResourceOf(grant)), permission),
                                                              Resource{resourceHash, grant.position});
    if (!isNew && first->second.hash != resourceHash) {
        alike.Add(fmt::format("'{}' at position {}, beside position {}", ResourceOf(grant), grant.position,
                              first->second.position));
    }
    if (candidates.size() < mostCandidates && !ListedValues(ResourceOf(grant)).empty()) {
        candidates.push_back({permission, grant.position, ResourceOf(grant)});
    }
}

// Names may hold commas, so only a text that has a granted resource between them is reported.
void RepeatedGrantCheck::FindLists(FindingSink& sink) const
{
    FirstAndCount lists;
    for (const Candidate& candidate : candidates) {
        const std::vector<std::string> parts = ListedValues(candidate.resource);
        if (std::any_of(parts.begin(), parts.end(), [&](const std::string& part) {
                return firstOfAppearance.count(HashOf(Appearance(part), candidate.permission)) != 0;
            })) {
            lists.Add(fmt::format("that at position {}, which is '{}'", candidate.position, candidate.resource));
        }
    }
    if (lists.count != 0) {
        sink.Warn("AC096", SecurityPlace(),
                  fmt::format("resource seems to list several resources in {}",
                              lists.InWords("row", " of security_permission")),
                  "the whole text is one value: users see only records that have this very text",
                  "write a row for each resource, each with a position of its own");
    }
}

void RepeatedGrantCheck::FindRepeated(Rows::const_iterator first, Rows::const_iterator last, FirstAndCount& repeated)
{
    for (auto row = first; row != last && std::next(row) != last; ++row) {
        const Row& next = *std::next(row);
        if (row->isOutright == next.isOutright && row->resourceHash == next.resourceHash && row->bits == next.bits &&
            row->isConditional == next.isConditional) {
            repeated.Add(fmt::format("that at position {}, which repeats position {}", next.position, row->position));
        }
    }
}

void RepeatedGrantCheck::FindOtherBits(Rows::const_iterator first, Rows::const_iterator last, FirstAndCount& otherBits)
{
    const auto isAskedFor = [](const Row& row) { return row.isAskedFor; };
    if (std::none_of(first, last, isAskedFor)) {
        return; // AC040 and AC081 are about grantees who have none of the bits
    }
    while (first != last) {
        const auto end = EndOfEqual(first, last, [](const Row& one, const Row& other) {
            return one.isOutright == other.isOutright && one.resourceHash == other.resourceHash;
        });
        if (!first->isOutright && std::none_of(first, end, isAskedFor)) {
            otherBits.Add(fmt::format("that at position {}, with {}", first->position, first->bits));
        }
        first = end;
    }
}

void RepeatedGrantCheck::Report(FindingSink& sink)
{
    std::sort(rows.begin(), rows.end(), [](const Row& one, const Row& other) {
        return std::tie(one.granteeHash, one.isOutright, one.resourceHash, one.bits, one.isConditional, one.position) <
               std::tie(other.granteeHash, other.isOutright, other.resourceHash, other.bits, other.isConditional,
                        other.position);
    });
    FirstAndCount repeated;
    FirstAndCount otherBits;
    for (auto first = rows.cbegin(); first != rows.cend();) {
        const auto end = EndOfEqual(
            first, rows.cend(), [](const Row& one, const Row& other) { return one.granteeHash == other.granteeHash; });
        FindRepeated(first, end, repeated);
        FindOtherBits(first, end, otherBits);
        first = end;
    }
    if (otherBits.count != 0) {
        sink.Warn("AC080", SecurityPlace(),
                  fmt::format("permission_value has no bits for a field, unlike other rows of the same grantee, in {}",
                              otherBits.InWords("row", " of security_permission")),
                  "the row has no effect: the users see the records of their other resources, and not of this one",
                  "set permission_value to what the user's other rows of this permission have, or delete the row");
    }
    if (alike.count != 0) {
        sink.Warn("AC084", SecurityPlace(),
                  fmt::format("resource differs only by letter case, blanks or characters that look alike from another "
                              "of the same permission in {}",
                              alike.InWords("row", " of security_permission")),
                  "they are different values in the filter: where records hold only one of them, users who are granted "
                  "the other do not see these records",
                  "write the resource in both rows as the records have it");
    }
    FindLists(sink);
    if (repeated.count != 0) {
        sink.Warn("AC086", SecurityPlace(),
                  fmt::format("the same grant is made again in {}", repeated.InWords("row", " of security_permission")),
                  "nobody sees more by it, but who takes back one of the grants leaves the other in force",
                  "delete the row that repeats another");
    }
}

} // namespace secm::analysis
