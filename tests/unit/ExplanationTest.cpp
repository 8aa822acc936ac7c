// How an explanation shows what is long, and what was tried.
#include "tools/acfilter/render/Explanation.h"
#include "analysis/trace/Tracer.h"
#include "testing/Outside.h"
#include "tests/Cases.h"
#include "tools/acfilter/render/Printable.h"

#include <stdexcept>

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
    return ExplanationText(trace, style);
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

// Of a scripted user u, with one field that takes the permission p.
class TriedChangesTest : public testing::Test {
protected:
    TriedChangesTest()
    {
        outside = Outside();
        const std::string top = "zarvona\\system\\applications\\securitymanager\\unified_access_control\\";
        outside.configuration.Add(top + "repositories\\docs\\hide_all_filter", "NOTHING");
        outside.configuration.Add(top + "fields\\f\\docs\\permission_name", "p");
        outside.configuration.Add(top + "fields\\f\\docs\\permission_value", "1");
        outside.configuration.Add(top + "fields\\f\\docs\\condition1", "%values%");
        outside.users["u"].permissions = {{"p", 1, "a", false}, {"p", 1, "b", false}};
        outside.users["other"] = outside.users["u"];
    }
};

// Otherwise the explanation of today's filter would call itself that of the changes.
TEST_F(TriedChangesTest, AreRefusedWhereTheyCannotBeTried)
{
    const PermissionBase grant("p", 1, nullptr, false);
    const struct {
        Refusal Outside::*missing;
        WhatIf tried;
        const char* refusal; ///< Of a log-in; null: it is answered.
    } cases[] = {
        {&Outside::permissionLists, {}, nullptr},
        {&Outside::permissionLists, {{{"uid", "u"}}, {}, {}}, nullptr},
        {&Outside::permissionLists,
         {{}, {grant}, {}},
         "the security manager lists no permissions, so no change can be tried"},
        {&Outside::permissionLists,
         {{}, {}, {{"p"}}},
         "the security manager lists no permissions, so no change can be tried"},
        {&Outside::userDetails, {}, nullptr},
        {&Outside::userDetails,
         {{{"uid", "u"}}, {}, {}},
         "the security manager tells nothing of the user, so no change can be tried"},
        {&Outside::userDetails,
         {{}, {grant}, {}},
         "the security manager tells nothing of the user, so no change can be tried"},
    };
    for (const auto& [missing, tried, refusal] : cases) {
        outside.permissionLists = outside.userDetails = {};
        Tracer manager("docs", tried);
        manager.Connect("text", 7);
        manager.Explain({"other", "", false});
        (outside.*missing).nth = Refusal::every;
        try {
            manager.Explain({"u", "", false});
            EXPECT_EQ(refusal, nullptr);
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), refusal);
        }
    }
}

TEST_F(TriedChangesTest, AreCountedAfreshForEachRequest)
{
    Tracer manager("docs", {{}, {}, {{"p:a"}}});
    manager.Connect("text", 7);
    for (const bool isKnown : {true, true, false}) {
        for (const bool withoutLogin : {false, true}) {
            if (!isKnown) {
                outside.users.clear();
            }
            const Trace trace = manager.Explain({"u", "", withoutLogin});
            EXPECT_EQ(trace.answer.filter, isKnown ? "b" : "");
            EXPECT_EQ(trace.tried.revocations.front().revoked, isKnown ? 1U : 0U);
        }
    }
}

} // namespace
