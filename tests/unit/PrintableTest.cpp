#include "tools/acfilter/render/Printable.h"

#include "tests/Cases.h"
#include "tools/acfilter/render/Json.h"

namespace {

using namespace secm::testing;

using namespace secm::acfilter;

class PrintableTest : public testing::TestWithParam<Lines> {};

TEST_P(PrintableTest, IsHarmlessToATerminal)
{
    const std::string& text = GetParam().at(1);
    EXPECT_EQ(Printable(text), GetParam().at(2));
    // The byte after the view would complete a control character; it must not be read.
    EXPECT_EQ(Printable(std::string_view(text + "\x8e").substr(0, text.size())), GetParam().at(2));
}

TEST_P(PrintableTest, IsHarmlessInJsonAndStaysWhatItIs)
{
    const Json object = {{"text", GetParam().at(1)}};
    std::string line = JsonLine(object);
    EXPECT_EQ(Json::parse(line), Json::parse(object.dump(-1, ' ', true, Json::error_handler_t::replace)));
    EXPECT_EQ(line.back(), '\n');
    line.pop_back();
    EXPECT_EQ(Printable(line), line);
}

INSTANTIATE_TEST_SUITE_P(Table, PrintableTest, testing::ValuesIn(CaseRows("printable.txt")), CaseName);

} // namespace
