// Which name a misspelt one was meant to be, and where a quoted text is open.
#include "analysis/check/Spelling.h"
#include "analysis/check/OpenQuote.h"

#include <gtest/gtest.h>

using secm::analysis::Nearest;
using secm::analysis::OpenQuote;

namespace {

struct SpellingCase {
    const char* name;
    std::string misspelt;
    std::vector<std::string> names;
    std::string nearest;
};
class SpellingTest : public testing::TestWithParam<SpellingCase> {};

TEST_P(SpellingTest, FindsTheNearestName)
{
    EXPECT_EQ(Nearest(GetParam().misspelt, GetParam().names), GetParam().nearest);
}

INSTANTIATE_TEST_SUITE_P(Names, SpellingTest,
                         testing::ValuesIn(std::vector<SpellingCase>{
                             {"TwoAdded", "my_fieldsx", {"my_field"}, "my_field"},
                             {"TwoRemoved", "my_fie", {"my_field"}, "my_field"},
                             {"ThreeRemoved", "my_fi", {"my_field"}, ""},
                             {"TwoChanged", "mi-field", {"my_field"}, "my_field"},
                             {"ThreeChanged", "ni-field", {"my_field"}, ""},
                             {"ASwapIsOneChange", "ymf_ield", {"my_field"}, "my_field"},
                             {"ASwapAndTwoChanges", "ym-fielt", {"my_field"}, ""},
                             {"CaseDoesNotCount", "MY_FIELD", {"my_field"}, "my_field"},
                             {"TheNearestIsNotTheFirst", "conditon1", {"conditio", "condition1"}, "condition1"},
                             {"TheFirstOfTwoAsNear", "condition", {"condition1", "condition2"}, "condition1"},
                             {"NotTheNameItself", "sales", {"sales", "sale"}, "sale"},
                             {"NothingInCommon", "ab", {"cd"}, ""},
                             {"NothingOfTheNameIsLeft", "a", {"b", ""}, ""},
                         }),
                         [](const auto& row) { return row.param.name; });

struct QuoteCase {
    const char* name;
    std::string part;
    std::string open;
};
class OpenQuoteTest : public testing::TestWithParam<QuoteCase> {};

TEST_P(OpenQuoteTest, IsTheQuoteOfTheTextThatIsNotClosed)
{
    EXPECT_EQ(OpenQuote(GetParam().part), GetParam().open);
}

INSTANTIATE_TEST_SUITE_P(Parts, OpenQuoteTest,
                         testing::ValuesIn(std::vector<QuoteCase>{
                             {"None", "region = ", ""},
                             {"Single", "region = '", "'"},
                             {"Double", "region = \"a", "\""},
                             {"Backquote", "`region", "`"},
                             {"Closed", "region = 'a' OR \"b\" = ", ""},
                             {"AnotherQuoteInside", "region = 'a\"", "'"},
                             {"AnotherQuoteClosesNothing", "region = \"a'b\" OR ", ""},
                             {"TwiceStandsForItself", "region = 'a''b", "'"},
                         }),
                         [](const auto& row) { return row.param.name; });

} // namespace
