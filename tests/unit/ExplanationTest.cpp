// How an explanation shows what is long.
#include "tools/acfilter/render/Explanation.h"
#include "analysis/trace/Trace.h"
#include "tests/Cases.h"
#include "tools/acfilter/render/Printable.h"

using namespace secm::testing;
using testing::HasSubstr;

namespace {

using namespace secm::analysis;
using namespace secm::acfilter;

// Of a user with these resources, whose condition came out as `text`.
std::string Explained(const std::string& text, const Lines& resources, const TextStyle& style)
{
    const auto rule = std::make_shared<FieldRule>();
    rule->conditions.resize(1);
    Trace trace;
    trace.answer = {text, Outcome::restricted};
    FieldTrace& field = trace.fields.emplace_back();
    field.rule = rule;
    ConditionTrace& condition = field.conditions.emplace_back();
    condition.rule = &rule->conditions.front();
    condition.text = field.clause = text;
    for (const std::string& resource : resources) {
        field.values.push_back({resource, resource, std::nullopt});
    }
    return ExplanationText({trace, {}, {}, {}, {}}, style);
}

TEST(ExplanationTest, CutsLongTextsBetweenCharacters)
{
    const std::string almost(398, 'x');
    const struct {
        std::string text;
        std::string shown;
    } cases[] = {
        {almost + "yz", almost + "yz"},
        {almost + "yzx", almost + "yz ... 401 bytes in all, --full shows them"},
        {almost + "\u00e9", almost + "\u00e9"},
        {almost + "\u00e9z", almost + "\u00e9 ... 401 bytes in all, --full shows them"},
        {almost + "y\u00e9", almost + "y ... 401 bytes in all, --full shows them"},
        {almost + "y\U0001f600", almost + "y ... 403 bytes in all, --full shows them"},
        {almost + "\033yz", almost + "\\x1by ... 401 bytes in all, --full shows them"},
        {std::string(401, '\200'), " ... 401 bytes in all, --full shows them"},
    };
    for (const auto& [text, shown] : cases) {
        const std::string cut = Explained(text, {}, {});
        EXPECT_THAT(cut, HasSubstr("     text     " + shown + "\n"));
        EXPECT_THAT(cut, HasSubstr("   clause     " + shown + "\n"));
        EXPECT_THAT(cut, testing::EndsWith("\nFilter\n" + text + "\n"));
        EXPECT_THAT(Explained(text, {}, {true, false, true}), HasSubstr("     text     " + Printable(text) + "\n"));
        EXPECT_THAT(Explained(text, {}, {false, false, true}),
                    testing::EndsWith("\nFilter\n" + Printable(text) + "\n"));
    }
}

TEST(ExplanationTest, CutsLongListsShort)
{
    const Lines eight(8, "a");
    const Lines nine(9, "a");
    const std::string shown = "   resources  'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a'";
    EXPECT_THAT(Explained("t", eight, {}), HasSubstr(shown + "\n"));
    EXPECT_THAT(Explained("t", nine, {}), HasSubstr(shown + ", ... 9 in all, --full shows them\n"));
    EXPECT_THAT(Explained("t", nine, {true, false, false}), HasSubstr(shown + ", 'a'\n"));
}

} // namespace
