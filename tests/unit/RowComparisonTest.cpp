#include "analysis/compare/RowComparison.h"
#include "analysis/data/RecordExplanation.h"
#include "tests/unit/FakeRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using secm::testing::FakeRows;
namespace analysis = secm::analysis;
using analysis::Change;

FakeRows Rows()
{
    return {
        {"1", "2", "3"},
        {{"none", {}}, {"one", {"1"}}, {"two", {"2"}}, {"both", {"1", "2"}}, {"all", {"1", "2", "3"}}, {"ONE", {"1"}}}};
}

struct ComparedRows {
    const char* name;
    const char* before;
    const char* after;
    Change byValues;
    Change expected;
    std::uint64_t gained;
    std::uint64_t lost;
};
class RowComparisonTest : public testing::TestWithParam<ComparedRows> {};

TEST_P(RowComparisonTest, DecidesWhatValuesDoNot)
{
    FakeRows rows = Rows();
    analysis::UserChange user;
    user.before.filter = GetParam().before;
    user.after.filter = GetParam().after;
    user.change = GetParam().byValues;
    CompareRows(user, rows, 1);
    EXPECT_EQ(NameOf(user.change), NameOf(GetParam().expected));
    ASSERT_TRUE(user.rows);
    EXPECT_EQ(user.rows->gained, GetParam().gained);
    EXPECT_EQ(user.rows->lost, GetParam().lost);
    EXPECT_EQ(user.rows->gainedKeys.size(), GetParam().gained == 0 ? 0U : 1U);
    EXPECT_EQ(user.rows->lostKeys.size(), GetParam().lost == 0 ? 0U : 1U);
}

INSTANTIATE_TEST_SUITE_P(Table, RowComparisonTest,
                         testing::ValuesIn(std::vector<ComparedRows>{
                             {"Gained", "one", "both", Change::changed, Change::wider, 1, 0},
                             {"Lost", "both", "one", Change::changed, Change::narrower, 0, 1},
                             {"GainedAndLost", "one", "two", Change::changed, Change::changed, 1, 1},
                             {"NoneDiffers", "one", "ONE", Change::changed, Change::changed, 0, 0},
                             {"ValuesSayWider", "one", "ONE", Change::wider, Change::wider, 0, 0},
                             {"ValuesSayNarrower", "one", "ONE", Change::narrower, Change::narrower, 0, 0},
                             {"ValuesSayWiderAndRowsAreLost", "both", "one", Change::wider, Change::changed, 0, 1},
                             {"ValuesSayNarrowerAndRowsAreGained", "one", "both", Change::narrower, Change::changed, 1,
                              0},
                             {"ValuesSayWiderAndRowsAreSwapped", "one", "two", Change::wider, Change::changed, 1, 1},
                             {"TheRestrictionEnds", "one", "", Change::wider, Change::wider, 2, 0},
                             {"TheRestrictionEndsWithoutMoreRows", "all", "", Change::wider, Change::wider, 0, 0},
                             {"ARestrictionBegins", "", "none", Change::narrower, Change::narrower, 0, 3},
                         }),
                         [](const auto& row) { return row.param.name; });

TEST(RowComparisonTest, LeavesTheChangeWhenAFilterIsRefused)
{
    FakeRows rows = Rows();
    for (const auto& [before, after] : {std::pair("one", "broken"), {"broken", "one"}, {"", "broken"}}) {
        analysis::UserChange user;
        user.before.filter = before;
        user.after.filter = after;
        user.change = Change::narrower;
        CompareRows(user, rows, 1);
        EXPECT_EQ(user.change, Change::narrower);
        ASSERT_TRUE(user.rows);
        EXPECT_EQ(user.rows->error, "no such filter: broken");
        EXPECT_THAT(user.rows->gainedKeys, IsEmpty());
    }
    analysis::UserChange same;
    same.before.filter = same.after.filter = "broken";
    CompareRows(same, rows, 1);
    EXPECT_FALSE(same.rows) << "equal filters are not asked about";
}

analysis::Trace TraceOf(analysis::Outcome outcome, const std::string& filter, const std::vector<std::string>& clauses)
{
    analysis::Trace trace;
    trace.answer = {filter, outcome};
    for (std::size_t index = 0; index < clauses.size(); ++index) {
        auto rule = std::make_shared<analysis::FieldRule>();
        rule->name = "field" + std::to_string(index);
        trace.fields.emplace_back().rule = rule;
        trace.fields.back().clause = clauses[index];
    }
    return trace;
}

TEST(RecordExplanationTest, TriesEachClause)
{
    FakeRows rows({"7", "8"}, {{"area = 'x' AND owner", {"8"}},
                               {"area = 'x'", {"7"}},
                               {"\"Area\" 'owner'", {"8"}},
                               {"owner", {"8"}},
                               {"hide", {}},
                               {"default id", {"7"}}});
    const auto record = ExplainRecord(TraceOf(analysis::Outcome::restricted, "area = 'x' AND owner",
                                              {"area = 'x'", "", "owner", "id owners", "\"Area\" 'owner'"}),
                                      rows, "7");
    EXPECT_EQ(record.isVisible, false);
    ASSERT_EQ(record.clauses.size(), 4U) << "an empty clause is none";
    EXPECT_EQ(record.clauses[0].holds, true);
    EXPECT_THAT(record.clauses[0].columns, ElementsAre(analysis::ColumnValue("Area", "north")));
    EXPECT_EQ(record.clauses[1].holds, false);
    EXPECT_THAT(record.clauses[1].columns, ElementsAre(analysis::ColumnValue("owner", std::nullopt)));
    EXPECT_EQ(record.clauses[2].holds, std::nullopt);
    EXPECT_EQ(record.clauses[2].error, "no such filter: id owners");
    EXPECT_THAT(record.clauses[2].columns, ElementsAre(analysis::ColumnValue("id", "7")));
    EXPECT_EQ(record.clauses[3].field, "field4");
    EXPECT_THAT(record.clauses[3].columns, ElementsAre(analysis::ColumnValue("Area", "north"))) << "'owner' is a value";

    EXPECT_THROW(ExplainRecord(TraceOf(analysis::Outcome::restricted, "hide", {}), rows, "9"), analysis::DataError);
}

TEST(RecordExplanationTest, NamesTheFieldThatHidesEverything)
{
    FakeRows rows({"7"}, {{"hide", {}}, {"default id", {"7"}}});
    const auto hidden = ExplainRecord(TraceOf(analysis::Outcome::hideAll, "hide", {"area", ""}), rows, "7");
    ASSERT_EQ(hidden.clauses.size(), 1U);
    EXPECT_EQ(hidden.clauses[0].field, "field1");
    EXPECT_EQ(hidden.clauses[0].clause, "hide");
    EXPECT_EQ(hidden.clauses[0].holds, false);

    const auto unknown = ExplainRecord(TraceOf(analysis::Outcome::unknownUser, "default id", {}), rows, "7");
    ASSERT_EQ(unknown.clauses.size(), 1U);
    EXPECT_EQ(unknown.clauses[0].field, "");
    EXPECT_EQ(unknown.isVisible, true);

    const auto broken = ExplainRecord(TraceOf(analysis::Outcome::restricted, "x", {"x"}), rows, "7");
    EXPECT_EQ(broken.isVisible, std::nullopt);
    EXPECT_EQ(broken.error, "no such filter: x");

    const auto open = ExplainRecord(TraceOf(analysis::Outcome::hideAll, "", {""}), rows, "7");
    EXPECT_EQ(open.isVisible, true) << "an empty hide-all filter hides nothing";
    EXPECT_THAT(open.clauses, IsEmpty());
}

} // namespace
