// Compares differences with the rows that filters let through, and reports with the names in the database.
#include "tests/integration/Workspace.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iomanip>
#include <map>
#include <random>
#include <regex>
#include <set>
#include <sstream>

using nlohmann::json;

namespace {

using namespace secm::testing;

// As bytes, because the sqlite3 program changes line ends.
std::string Sql(const std::string& text)
{
    std::ostringstream literal;
    literal << std::hex << std::setfill('0') << "CAST(X'";
    for (const char character : text) {
        literal << std::setw(2) << static_cast<unsigned>(static_cast<unsigned char>(character));
    }
    return literal.str() + "' AS TEXT)";
}

class ReviewTest : public WorkspaceTest {
protected:
    template <class Range>
    auto OneOf(const Range& range)
    {
        return *std::next(range.begin(), static_cast<std::ptrdiff_t>(random() % range.size()));
    }

    std::vector<json> Objects(const std::string& command, std::set<int> statuses = {0}) const
    {
        const Outcome outcome = Run("acfilter " + command + " --format json");
        EXPECT_EQ(outcome.errors, "") << command;
        EXPECT_EQ(statuses.count(outcome.status), 1U) << command;
        std::vector<json> objects;
        std::istringstream lines(outcome.output);
        for (std::string line; std::getline(lines, line);) {
            objects.push_back(json::parse(line));
        }
        return objects;
    }

    std::mt19937 random{7};
};

class ComparisonTest : public ReviewTest {
protected:
    ComparisonTest()
    {
        Write("archive.toml", SampleText("archive.toml"));
        Write("excluding.toml", std::regex_replace(SampleText("archive.toml"),
                                                   std::regex("department %equal_operator%"), "department NOT IN"));
        MakeDatabase("documents.db", SampleText("documents.sql"));
        Write("users.txt", SampleText("users.txt"));
    }

    // Random changes of the sample's permissions, attributes and users.
    std::string SomeChanges()
    {
        const std::map<std::string, std::vector<std::string>> resources = {
            {"department", {"Finance", "Legal", "Crewing", "Fleet", "nowhere"}},
            {"site", {"bergen", "gdansk", "depot_north", "depot_south"}},
            {"kind", {"CON", "INV", "LET", "unknown"}},
            {"confidentiality", {"secret", "internal", "public"}},
            {"author", {"%my%", "e3", "e4"}},
            {"region", {"%my%", "baltic"}}};
        const std::vector<std::string> users = {"vera", "hugo", "mira", "omar", "sara", "ines",
                                                "kofi", "lena", "joan", "nils", "tom"};
        std::string statements;
        for (int position = 5000; position < 5006; ++position) {
            const auto [name, values] = OneOf(resources);
            const std::string value = random() % 4 == 0 ? "NULL" : "'" + OneOf(values) + "'";
            statements += "INSERT INTO security_permission VALUES (" + std::to_string(position) + ", 'user', '" +
                          OneOf(users) + "', 'archive." + name + "', 1, " + value + ", 0);\n";
        }
        statements +=
            "DELETE FROM security_permission WHERE position % 13 = " + std::to_string(random() % 13) + ";\n" +
            "UPDATE security_attribute SET attribute_value = 'north sea' WHERE attribute_name = 'region' AND " +
            std::to_string(random() % 2) + ";\n";
        return statements + "DELETE FROM security_user WHERE user_name = '" + OneOf(users) + "' AND " +
               std::to_string(random() % 2) + ";\n";
    }

    // How many rows of the archive each user loses and gains.
    std::map<std::string, std::pair<int, int>> Rows(const std::vector<json>& before, const std::vector<json>& after)
    {
        std::string statements;
        for (std::size_t n = 0; n < before.size(); ++n) {
            const auto condition = [&](const json& answer) {
                const std::string filter = answer["filter"];
                return filter.empty() ? "(1)" : "(" + filter + ")";
            };
            const std::string was = condition(before[n]);
            const std::string is = condition(after[n]);
            statements +=
                "SELECT sum(" + was + " AND NOT " + is + "), sum(" + is + " AND NOT " + was + ") FROM documents;\n";
        }
        Write("counts.sql", statements);
        std::istringstream answers(Run("sqlite3 -separator ' ' documents.db <counts.sql").output);
        std::map<std::string, std::pair<int, int>> rows;
        for (const json& answer : before) {
            auto& [lost, gained] = rows[answer["user"]];
            answers >> lost >> gained;
        }
        EXPECT_TRUE(answers) << statements;
        return rows;
    }
};

TEST_F(ComparisonTest, EveryGainAndLossOfRowsIsReported)
{
    std::map<std::string, int> seen;
    for (int round = 0; round < 16; ++round) {
        MakeDatabase("old" + std::to_string(round), SampleText("security.sql") + SomeChanges());
        MakeDatabase("new" + std::to_string(round), SampleText("security.sql") + SomeChanges());
        const std::string configuration = round % 2 == 0 ? "archive.toml" : "excluding.toml";
        const auto side = [&](const std::string& database) {
            return "-c " + configuration + " -r documents -s sqlite3://db=" + database + std::to_string(round);
        };
        const auto rows = Rows(Objects("filter --users-from users.txt " + side("old")),
                               Objects("filter --users-from users.txt " + side("new")));
        std::vector<json> users = Objects("diff " + side("old") + " --users-from users.txt --to " + configuration +
                                              " --to-security sqlite3://db=new" + std::to_string(round) +
                                              (round % 2 == 0 ? "" : " --excluding department"),
                                          {0, 4});
        users.erase(users.begin());
        std::map<std::string, std::string> changes;
        for (const json& user : users) {
            changes[user["user"]] = user["change"];
        }
        for (const auto& [user, counts] : rows) {
            const std::string change = changes.count(user) != 0 ? changes[user] : "same";
            const auto [lost, gained] = counts;
            EXPECT_TRUE(change == "wider" || change == "changed" || gained == 0) << round << user << change << gained;
            EXPECT_TRUE(change == "narrower" || change == "changed" || lost == 0) << round << user << change << lost;
            ++seen[change];
            seen["more"] += change == "wider" && gained > 0 ? 1 : 0;
            seen["less"] += change == "narrower" && lost > 0 ? 1 : 0;
        }
    }
    for (const std::string kind : {"wider", "narrower", "changed", "same", "more", "less"}) {
        EXPECT_GT(seen[kind], 5) << kind; // each kind occurred
    }
}

struct HostileUser {
    std::string group;
    std::string department;
};

class HostileReportTest : public ReviewTest {
protected:
    HostileReportTest()
    {
        Write("archive.toml", SampleText("archive.toml"));
        std::string statements = SampleText("security.sql") + "DELETE FROM security_user;\n";
        int position = 10000;
        while (users.size() < 2345) { // more than one page of a listing
            const HostileUser user{Text(), Text()};
            const std::string name = Text();
            if (!users.emplace(name, user).second) {
                continue;
            }
            statements += "INSERT INTO security_user VALUES (" + Sql(name) + ", " + Sql(user.group) + ");\n";
            for (const std::string field : {"department", "site", "kind", "confidentiality", "author", "region"}) {
                statements += "INSERT INTO security_permission VALUES (" + std::to_string(++position) + ", 'user', " +
                              Sql(name) + ", 'archive." + field + "', 1, " +
                              (field == "department" ? Sql(user.department) : "NULL") + ", 0);\n";
            }
        }
        MakeDatabase("security.db", statements);
    }

    std::string Text()
    {
        const std::vector<std::string> pieces = {
            "<",  ">",  "&",        "\"",  "'",       ",",           "=",        "+",     "-",        "@",    "\t",
            "\r", "\n", "\x1b[31m", "é",   "\u202e",  "\\",          "|",        "</td>", "<script>", "&lt;", "-->",
            " ",  "ש",  "a",        "]]>", "%values", "javascript:", "</title>", "\x7f",  "\u061c",   "＝"};
        std::string text;
        for (auto count = 1 + random() % 6; count != 0; --count) {
            text += OneOf(pieces);
        }
        return text;
    }

    std::string Report(const std::string& format) const
    {
        const Outcome outcome = Run("acfilter report $sample --values --format " + format);
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(outcome.status, 0);
        return outcome.output;
    }

    std::vector<std::string> Cells(const std::string& name, const HostileUser& user) const
    {
        return {name,         user.group,
                "restricted", "1: '" + user.department + "'",
                "all",        "all",
                "all",        "all",
                "all",        "department = ('" + user.department + "')"};
    }

    std::map<std::string, HostileUser> users;
};

TEST_F(HostileReportTest, CsvReadsBackAsItWasWritten)
{
    const std::string text = Report("csv");
    std::vector<std::vector<std::string>> rows(1, {""});
    bool isQuoted = false;
    for (std::size_t n = 0; n < text.size(); ++n) {
        if (text[n] == '"' && isQuoted && text[n + 1] == '"') {
            rows.back().back() += text[n++];
        } else if (text[n] == '"') {
            isQuoted = !isQuoted;
        } else if (!isQuoted && text[n] == ',') {
            rows.back().emplace_back();
        } else if (!isQuoted && text.compare(n, 2, "\r\n") == 0) {
            rows.push_back({""});
            ++n;
        } else {
            rows.back().back() += text[n];
        }
    }
    ASSERT_EQ(rows.size(), users.size() + 2); // the titles, and an empty row behind the last line end
    std::size_t index = 0;
    const std::regex formula("^([\t\r]|[ \t\r\n,|\"]*(＝|[-=+@]))");
    for (const auto& [name, user] : users) {
        std::vector<std::string> cells = Cells(name, user);
        for (std::string& cell : cells) {
            cell.insert(0, std::regex_search(cell, formula) ? "'" : "");
        }
        ASSERT_EQ(rows[++index], cells);
    }
}

TEST_F(HostileReportTest, ThePageShowsNamesAsText)
{
    const std::map<std::string, std::string> shown = {
        {"&", "&amp;"},          {"<", "&lt;"},   {">", "&gt;"},     {"\"", "&quot;"},  {"\t", "\\x09"},
        {"\r", "\\x0d"},         {"\n", "\\x0a"}, {"\x1b", "\\x1b"}, {"\x7f", "\\x7f"}, {"\u202e", "\\xe2\\x80\\xae"},
        {"\u061c", "\\xd8\\x9c"}};
    const std::string page = Report("html");
    std::istringstream lines(page.substr(page.find("id=\"access\"")));
    std::string line;
    while (std::getline(lines, line) && line != "<tbody>") {
    }
    const std::regex tags("</?(tr|th|td|bdi|code)( (class|scope)=\"[a-z-]+\")?>");
    for (const auto& [name, user] : users) {
        std::string expected;
        for (const std::string& cell : Cells(name, user)) {
            expected += cell;
        }
        for (const std::string first : {"&", "<"}) { // first, because the other escapes hold ampersands
            expected = std::regex_replace(expected, std::regex(first), shown.at(first));
        }
        for (const auto& [raw, escaped] : shown) {
            for (std::size_t at = 0; raw != "&" && raw != "<" && (at = expected.find(raw, at)) != std::string::npos;) {
                expected.replace(at, raw.size(), escaped);
            }
        }
        ASSERT_TRUE(std::getline(lines, line));
        ASSERT_EQ(std::regex_replace(line, tags, ""), expected);
    }
    EXPECT_NE(page.find("<dt>Users</dt><dd>2345</dd>"), std::string::npos);
}

TEST_F(HostileReportTest, TheTableHoldsNoControlCharacters)
{
    const std::string table = Report("text");
    const auto isControl = [](char character) {
        return character != '\n' && (static_cast<unsigned char>(character) < 0x20 || character == 0x7f);
    };
    EXPECT_TRUE(std::none_of(table.begin(), table.end(), isControl));
    for (const std::string turn : {"\u202e", "\u061c"}) {
        EXPECT_EQ(table.find(turn), std::string::npos);
    }
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), static_cast<std::ptrdiff_t>(users.size() + 3));
    EXPECT_EQ(table.rfind("2345 users: 0 unrestricted, 2345 restricted, 0 hide-all, 0 default\n\nuser ", 0), 0U);
}

TEST_F(HostileReportTest, JsonReadsBackAsItWasWritten)
{
    const std::vector<json> rows = Objects("report $sample --values");
    ASSERT_EQ(rows.size(), users.size());
    std::size_t index = 0;
    for (const auto& [name, user] : users) {
        const json& row = rows[index++];
        EXPECT_EQ(row["user"], name);
        EXPECT_EQ(row["group"], user.group);
        EXPECT_EQ(row["fields"][0]["values"], json::array({user.department}));
        EXPECT_EQ(row["filter"], "department = ('" + user.department + "')");
    }
}

} // namespace
