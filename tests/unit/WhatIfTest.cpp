// What administrators may try: their words for it, and what becomes of a user's permissions.
#include "analysis/trace/GrantText.h"
#include "analysis/trace/WhatIfDecorators.h"
#include "tests/Permissions.h"
#include "tools/acfilter/commands/TriedChanges.h"

#include <algorithm>

namespace {

using namespace secm::testing;

using namespace secm::analysis;

std::string Joined(const Lines& texts)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : ";") + text;
    }
    return joined;
}

class WordsOfChangesTest : public testing::TestWithParam<Lines> {};

TEST_P(WordsOfChangesTest, AreUnderstoodOrRefused)
{
    const Lines& row = GetParam();
    if (row.at(1) == "--grant") {
        const auto grant = secm::analysis::GrantFrom(row.at(2));
        EXPECT_EQ(grant ? Shown(*grant) : "refused", row.at(3));
    } else {
        const auto attribute = secm::acfilter::AttributeFrom(row.at(2));
        EXPECT_EQ(attribute ? "[" + attribute->first + "][" + attribute->second + "]" : "refused", row.at(3));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, WordsOfChangesTest, testing::ValuesIn(CaseRows("changes_in_words.txt")), CaseName);

class ChangedPermissionsTest : public testing::TestWithParam<Lines> {};

TEST_P(ChangedPermissionsTest, AreHeld)
{
    const Lines& row = GetParam();
    WhatIf tried;
    tried.grants = PermissionsFrom(row.at(3));
    for (const std::string& revoked : row.at(2) == "-" ? Lines() : Split(row.at(2), ";")) {
        tried.revocations.push_back({revoked});
    }
    EXPECT_EQ(tried.ChangesPermissions(), !tried.IsEmpty());
    Lines held, counts;
    for (const PermissionBase& permission : WithChanges(tried, PermissionsFrom(row.at(1)))) {
        held.push_back(Shown(permission));
    }
    for (const WhatIf::Revocation& revocation : tried.revocations) {
        counts.push_back(std::to_string(revocation.revoked));
    }
    EXPECT_EQ(Joined(held), row.at(4));
    EXPECT_EQ(Joined(counts), row.at(5));
}

INSTANTIATE_TEST_SUITE_P(Table, ChangedPermissionsTest, testing::ValuesIn(CaseRows("changed_permissions.txt")),
                         CaseName);

} // namespace
