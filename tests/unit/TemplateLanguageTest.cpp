#include "SECM_AccessControl/TemplateLanguage.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using secm::ReplaceFirst;

struct Replacement {
    const char* name;
    const char* text;
    const char* pattern;
    const char* replacement;
    bool isFound;
    const char* expected;
};
class ReplaceFirstTest : public testing::TestWithParam<Replacement> {};

TEST_P(ReplaceFirstTest, ReplacesOneOccurrence)
{
    std::string text = GetParam().text;
    EXPECT_EQ(ReplaceFirst(text, GetParam().pattern, GetParam().replacement), GetParam().isFound);
    EXPECT_EQ(text, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, ReplaceFirstTest,
                         testing::ValuesIn(std::vector<Replacement>{
                             {"LaterOnesStay", "a$x$b$x$", "$x$", "$x$y", true, "a$x$yb$x$"},
                             {"NotFound", "$X$", "$x$", "y", false, "$X$"},
                             {"AfterABrokenBeginning", "%%v%", "%v%", "1", true, "%1"},
                             {"EmptyPatternIsAtTheStart", "text", "", "1", true, "1text"},
                             {"EmptyPatternInAnEmptyText", "", "", "1", true, "1"},
                             {"EmptyReplacement", "a$x$b", "$x$", "", true, "ab"},
                         }),
                         [](const auto& row) { return row.param.name; });

} // namespace
