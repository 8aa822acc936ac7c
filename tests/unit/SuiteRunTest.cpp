// Tests of a suite on the platform in memory, where the two roads can differ and rows can be anything.
#include "analysis/suite/SuiteRun.h"
#include "analysis/suite/Coverage.h"
#include "analysis/trace/Tracer.h"
#include "testing/Outside.h"
#include "tests/Permissions.h"
#include "tests/unit/FakeRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

using namespace secm::testing;
namespace analysis = secm::analysis;

const std::string root = "zarvona\\system\\applications\\securitymanager\\unified_access_control\\";

class SuiteRunTest : public testing::Test {
protected:
    SuiteRunTest()
    {
        outside = {};
        Set("repositories\\docs\\", {{"hide_all_filter", "none"},
                                     {"default_filter", "public"},
                                     {"filter_delimiter", " AND "},
                                     {"value_multiplicity_delimiter", ","},
                                     {"single_equal_operator", "="},
                                     {"multiple_equal_operator", "in"}});
        Set("fields\\area\\docs\\",
            {{"permission_name", "p.area"}, {"permission_value", "1"}, {"condition1", "area(%values%)"}});
        Set("fields\\kind\\docs\\", {{"permission_name", "p.kind"},
                                     {"permission_value", "1"},
                                     {"condition1", "kind(%values%)"},
                                     {"values_function1", "CodeToDisplayName"},
                                     {"values_function_config_string1", "kinds"}});
        Set("fields\\own\\docs\\", {{"permission_name", "p.own"},
                                    {"permission_value", "1"},
                                    {"conditions_delimiter", " OR "},
                                    {"condition1", "own($id$)"},
                                    {"replace_fields1", "$id$"},
                                    {"mandatory_fields1", "$id$"},
                                    {"condition2", "shared"}});
        outside.configuration.Add("zarvona\\system\\applications\\codes\\kinds\\I\\display_name", "invoice");
        outside.configuration.Add("zarvona\\system\\applications\\codes\\kinds\\L\\display_name", "letter");
        AddUser("all", "p.area:1:null;p.kind:1:null;p.own:1:null");
        AddUser("some", "p.area:1:north;p.area:1:south;p.kind:1:I;p.own:1:null");
        AddUser("one", "p.area:1:north;p.kind:1:L;p.own:1:%my%", {{"id", "e17"}});
        AddUser("noid", "p.area:1:null;p.kind:1:null;p.own:1:%my%");
        AddUser("none", "p.area:1:null");
    }

    void Set(const std::string& path, const std::map<std::string, std::string>& values)
    {
        for (const auto& [key, value] : values) {
            outside.configuration.Add(root + path + key, value);
        }
    }

    void AddUser(const std::string& name, const std::string& grants, std::map<std::string, std::string> attributes = {})
    {
        outside.users[name] = User("staff", std::move(attributes), PermissionsFrom(grants));
    }

    std::vector<std::string> Failures(analysis::SuiteTest test, analysis::DataSource* rows = nullptr)
    {
        analysis::Suite suite;
        suite.repository = "docs";
        suite.tests.push_back(std::move(test));
        analysis::Tracer tracer("docs");
        EXPECT_TRUE(tracer.Connect("text", 7));
        analysis::SuiteRun run(suite, tracer, rows);
        analysis::Coverage coverage(tracer.Rules());
        const analysis::TestResult result = run.Run(suite.tests.front());
        for (const analysis::Trace& trace : result.traces) {
            coverage.Add(trace);
        }
        missing = coverage.Missing();
        percent = coverage.Percent();
        std::vector<std::string> failures;
        for (const analysis::Failure& failure : result.failures) {
            failures.push_back(failure.user + " " + failure.what + (failure.name.empty() ? "" : " " + failure.name) +
                               ": " + failure.expected + " / " + failure.found +
                               (failure.because.empty() ? "" : " / " + failure.because));
        }
        return failures;
    }

    static analysis::SuiteTest Test(const std::string& user)
    {
        analysis::SuiteTest test;
        test.name = "test of " + user;
        test.users = {user};
        return test;
    }

    static analysis::ExpectedValues Values(const std::string& field, std::set<std::string> values)
    {
        return {field, analysis::ExpectedValues::Kind::values, std::move(values), {}};
    }

    std::vector<std::string> missing; // of the last test
    unsigned percent = 0;
};

TEST_F(SuiteRunTest, ComparesOutcomesAndFilters)
{
    const struct {
        const char* user;
        analysis::Outcome outcome;
        const char* filter;
    } cases[] = {
        {"all", analysis::Outcome::unrestricted, ""},
        {"some", analysis::Outcome::restricted, "area(north,south) AND kind(invoice)"},
        {"one", analysis::Outcome::restricted, "area(north) AND kind(letter) AND (own(e17) OR shared)"},
        {"noid", analysis::Outcome::restricted, "shared"},
        {"none", analysis::Outcome::hideAll, "none"},
        {"nobody", analysis::Outcome::unknownUser, "public"},
    };
    for (const auto& each : cases) {
        analysis::SuiteTest test = Test(each.user);
        test.outcome = each.outcome;
        test.filter = each.filter;
        EXPECT_THAT(Failures(test), IsEmpty());

        test.outcome =
            each.outcome == analysis::Outcome::hideAll ? analysis::Outcome::restricted : analysis::Outcome::hideAll;
        test.filter = each.filter + std::string(" ");
        const std::string shown = *each.filter == '\0' ? "(no restriction: every record is visible)" : each.filter;
        EXPECT_THAT(Failures(test), ElementsAre(each.user + std::string(" outcome: ") + NameOf(*test.outcome) + " / " +
                                                    NameOf(each.outcome) + " / " + shown,
                                                each.user + std::string(" filter: ") + each.filter + "  / " + shown))
            << "a blank more is another filter";
    }
}

TEST_F(SuiteRunTest, ComparesTheValuesInTheFilter)
{
    using Kind = analysis::ExpectedValues::Kind;
    const auto failures = [&](const char* user, const analysis::ExpectedValues& expected) {
        analysis::SuiteTest test = Test(user);
        test.values = {expected};
        return Failures(test);
    };
    EXPECT_THAT(failures("some", Values("area", {"south", "north"})), IsEmpty());
    EXPECT_THAT(failures("some", Values("kind", {"invoice"})), IsEmpty()) << "as the values function gives them";
    EXPECT_THAT(failures("one", Values("own", {"e17"})), IsEmpty()) << "an attribute in place of a token";
    EXPECT_THAT(failures("noid", Values("own", {})), IsEmpty());
    EXPECT_THAT(failures("some", {"own", Kind::all, {}, {}}), IsEmpty());
    EXPECT_THAT(failures("none", {"kind", Kind::none, {}, {}}), IsEmpty());

    EXPECT_THAT(failures("some", Values("area", {"north"})),
                ElementsAre("some values area: 'north' / 'north', 'south' / area(north,south)"));
    EXPECT_THAT(failures("one", Values("area", {"north", "south"})),
                ElementsAre(HasSubstr("'north', 'south' / 'north'")));
    EXPECT_THAT(failures("some", Values("kind", {"I"})), ElementsAre(HasSubstr("'I' / 'invoice'")));
    EXPECT_THAT(failures("some", Values("own", {})), ElementsAre("some values own: no value / all"));
    EXPECT_THAT(failures("none", Values("kind", {})), ElementsAre("none values kind: no value / none"))
        << "a field that hides everything is no field without values";
    EXPECT_THAT(failures("some", {"area", Kind::all, {}, {}}), ElementsAre(HasSubstr("all / 'north', 'south'")));
    EXPECT_THAT(failures("all", {"area", Kind::none, {}, {}}), ElementsAre("all values area: none / all"));
    for (const Kind kind : {Kind::all, Kind::none, Kind::values}) {
        EXPECT_THAT(failures("none", {"own", kind, {}, {}}), ElementsAre(HasSubstr("not asked")))
            << "asked before: kind";
        EXPECT_THAT(failures("nobody", {"area", kind, {}, {}}),
                    ElementsAre(HasSubstr("an unknown user"), HasSubstr("not asked")));
    }
    analysis::SuiteTest unknown = Test("all");
    unknown.values = {Values("are", {})};
    EXPECT_THROW(Failures(unknown), analysis::SuiteError);
}

TEST_F(SuiteRunTest, FailsForAMisspeltUser)
{
    analysis::SuiteTest test = Test("Some");
    test.filter = "public";
    EXPECT_THAT(Failures(test),
                ElementsAre("Some user: a user whom the security manager knows / an unknown user / public"));
}

TEST_F(SuiteRunTest, AsksOnBothRoads)
{
    analysis::SuiteTest test = Test("some");
    test.outcome = analysis::Outcome::restricted;
    outside.permissionLists.nth = Refusal::every; // by name, the module has no permissions and hides everything
    EXPECT_THAT(Failures(test),
                ElementsAre("some roads: by name as at a log-in: area(north,south) AND kind(invoice) / none"));
}

TEST_F(SuiteRunTest, TriesRows)
{
    FakeRows rows({"1", "2", "3"}, {{"area(north,south) AND kind(invoice)", {"1", "2"}},
                                    {"area(north,south)", {"1", "2", "3"}},
                                    {"kind(invoice)", {"1", "2"}},
                                    {"none", {}}});
    analysis::SuiteTest test = Test("some");
    test.count = 2;
    test.sees = {"2", "1"};
    test.hides = {"3"};
    EXPECT_THAT(Failures(test, &rows), IsEmpty());

    test.count = 3;
    test.sees = {"3", "4"};
    test.hides = {"1", "4"};
    EXPECT_THAT(Failures(test, &rows),
                ElementsAre("some count: 3 / 2 / area(north,south) AND kind(invoice)",
                            "some sees 3: visible / not visible / kind: kind(invoice)",
                            "some sees 4: visible / there is no row with this key",
                            "some hides 1: not visible / visible / area: area(north,south); kind: kind(invoice)",
                            "some hides 4: not visible / there is no row with this key"))
        << "the clauses say why, and a key that no row has is never right";

    analysis::SuiteTest open = Test("all");
    open.count = 3;
    open.hides = {"3"};
    EXPECT_THAT(Failures(open, &rows), ElementsAre("all hides 3: not visible / visible"));

    analysis::SuiteTest refused = Test("one");
    refused.hides = {"3"};
    EXPECT_THAT(Failures(refused, &rows),
                ElementsAre(HasSubstr("one rows: a filter that the engine takes / no such filter")));
}

TEST_F(SuiteRunTest, CoversWhatTheAnswersReach)
{
    analysis::SuiteTest test = Test("all");
    test.outcome = analysis::Outcome::unrestricted;
    Failures(test);
    EXPECT_THAT(missing, Contains("the outcome restricted"));
    EXPECT_THAT(missing, Not(Contains("the field 'area' is held outright")));

    test.users = {"some", "one", "noid", "none", "nobody"};
    Failures(test);
    EXPECT_THAT(missing, ElementsAre("the outcome unrestricted", "the field 'area' leaves a user no value",
                                     "condition1 of the field 'kind' is filled by several values",
                                     "the field 'own' leaves a user no value"));
    AddUser("noarea", "p.kind:1:I;p.own:1:null");
    AddUser("kinds", "p.area:1:null;p.kind:1:I;p.kind:1:L");
    test.users.insert(test.users.end(), {"all", "noarea", "kinds"});
    Failures(test);
    EXPECT_THAT(missing, IsEmpty());
    EXPECT_EQ(percent, 100U);
}

} // namespace
