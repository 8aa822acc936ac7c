#include "analysis/data/SqlExpression.h"
#include "tools/acfilter/render/ReportWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using secm::analysis::IsExpressionOnly;

TEST(SqlExpressionTest, IsCertainOfPlainConditions)
{
    for (const char* plain : {"department = 'Legal'", "(a IN ('x', 'y') OR b <> 'it''s') AND c >= 1.5",
                              "name LIKE 'a%' AND \"group\" = 'UNION'", "NOT (a = '--' OR a = ';' OR a = ')')",
                              "published = 1\n", "ordered = 1 AND limits = 2 AND for_all = 3"}) {
        EXPECT_TRUE(IsExpressionOnly(plain)) << plain;
    }
}

TEST(SqlExpressionTest, IsNotCertainOfAnythingElse)
{
    for (const char* other : {"a = 1) OR (b = 1",
                              "a = (1",
                              "a = 'x",
                              "a = \"x",
                              "a = 'x' -- rest",
                              "a = 1 /* x */",
                              "a = 1; b",
                              "a = E'\\'' OR 'x'",
                              "a = $1",
                              "a = ?",
                              "a = :b",
                              "a = $$x$$",
                              "a = [b]",
                              "a = `b`",
                              "a = 1 ORDER BY b",
                              "a = 1\nLimit 1",
                              "a = 1 UNION SELECT 1",
                              "a = 1 GROUP BY a",
                              "a = 1 for update",
                              "a = 1 OFFSET 1",
                              "a = 1 FETCH FIRST ROW ONLY",
                              "a = 1 WINDOW w AS ()",
                              "\xc2\xa0",
                              "a = '\xff' OR \xff"}) {
        EXPECT_FALSE(IsExpressionOnly(other)) << other;
    }
}

secm::acfilter::ReportRow Row(const char* user, secm::acfilter::RowsSeen rows,
                              secm::analysis::Outcome outcome = secm::analysis::Outcome::restricted)
{
    return {user, std::nullopt, outcome, {}, "x", std::move(rows)};
}

TEST(RowsSummaryTest, NamesFaultsAndTheSlowest)
{
    secm::acfilter::ReportHead head;
    secm::acfilter::RowsSummary summary;
    summary.Add({"without rows", std::nullopt, secm::analysis::Outcome::restricted, {}, "x", std::nullopt});
    summary.Add(Row("quick", {5, 9, "", false, 0.0999}));
    EXPECT_THAT(summary.InWords(head), IsEmpty());
    EXPECT_FALSE(summary.HasFaults());

    head.record = "7";
    summary.Add(Row("slow", {5, 9, "", true, 0.5}));
    for (const char* user : {"s1", "s2", "s3", "s4", "s5"}) {
        summary.Add(Row(user, {5, 9, "", true, 0.3}));
    }
    summary.Add(Row("slowest", {5, 9, "", true, 2}));
    EXPECT_THAT(summary.InWords(head),
                ElementsAre("7 of 8 users see the record '7'", "Slow: the filter of 'slowest' takes 2.00 s",
                            "Slow: the filter of 'slow' takes 0.50 s", "Slow: the filter of 's5' takes 0.30 s",
                            "Slow: the filter of 's4' takes 0.30 s", "Slow: the filter of 's3' takes 0.30 s"));
    EXPECT_FALSE(summary.HasFaults());

    secm::acfilter::RowsSummary faults;
    faults.Add(Row("hidden", {0, 9, "", {}, 0}, secm::analysis::Outcome::hideAll));
    EXPECT_FALSE(faults.HasFaults());
    faults.Add(Row("shown", {1, 9, "", {}, 0}, secm::analysis::Outcome::hideAll));
    EXPECT_TRUE(faults.HasFaults());
    for (const char* user : {"u1", "u2", "u3", "u4", "u5", "u6"}) {
        faults.Add(Row(user, {0, 9, std::string("no column ") + user, {}, 0}));
    }
    EXPECT_THAT(
        faults.InWords({}),
        ElementsAre(
            "The engine refuses the filters of 6 users: 'u1', 'u2', 'u3', 'u4', 'u5', ...; it says of the first: "
            "no column u1",
            "hide_all_filter does not hide all rows from 1 user: 'shown'"));
}

} // namespace
