// Which name a misspelt one was meant to be, and where a quoted text is open.
#include "analysis/check/Spelling.h"
#include "analysis/check/OpenQuote.h"
#include "tests/Cases.h"

namespace {

using namespace secm::testing;

class SpellingTest : public testing::TestWithParam<Lines> {};

TEST_P(SpellingTest, FindsTheNearestName)
{
    EXPECT_EQ(secm::analysis::Nearest(GetParam().at(1), Split(GetParam().at(2), ";")), GetParam().at(3));
}

INSTANTIATE_TEST_SUITE_P(Names, SpellingTest, testing::ValuesIn(CaseRows("spelling.txt")), CaseName);

class OpenQuoteTest : public testing::TestWithParam<Lines> {};

TEST_P(OpenQuoteTest, IsTheQuoteOfTheTextThatIsNotClosed)
{
    EXPECT_EQ(secm::analysis::OpenQuote(GetParam().at(1)), GetParam().at(2));
}

INSTANTIATE_TEST_SUITE_P(Parts, OpenQuoteTest, testing::ValuesIn(CaseRows("open_quotes.txt")), CaseName);

} // namespace
