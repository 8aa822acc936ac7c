#include "tools/acfilter/Printable.h"

#include "tests/Cases.h"

namespace {

class PrintableTest : public testing::TestWithParam<Lines> {};

TEST_P(PrintableTest, IsHarmlessToATerminal)
{
    const std::string& text = GetParam().at(1);
    EXPECT_EQ(Printable(text), GetParam().at(2));
    // What stands behind the text, and would make a control character of its end, is not looked at.
    EXPECT_EQ(Printable(std::string_view(text + "\x8e").substr(0, text.size())), GetParam().at(2));
}

INSTANTIATE_TEST_SUITE_P(Table, PrintableTest, testing::ValuesIn(CaseRows("printable.txt")), CaseName);

} // namespace
