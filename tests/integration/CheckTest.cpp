// The examples in docs/checks.md: each wrong one has the finding of its section, each right one has none, and users get
// the filters that the page shows.
#include "tests/Cases.h"
#include "tests/integration/CommandBlocks.h"
#include "tests/integration/Workspace.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <ostream>
#include <random>
#include <regex>
#include <set>

using testing::HasSubstr;

namespace {

using namespace secm::testing;

const std::string documents = SAMPLE_FOLDER "/../../docs/checks.md";

struct Example {
    std::string toml;
    std::string sql;
    std::string filters; // "USER: FILTER", one a line
};

struct Section {
    std::string code;
    std::string severity;
    std::string text;
    std::vector<std::pair<std::string, std::string>> blocks; // language and content; empty: no example can show it
};

// Names the section in failures.
void PrintTo(const Section& section, std::ostream* output)
{
    *output << section.code;
}

std::vector<Section> ReadSections()
{
    std::vector<Section> sections(1);
    std::ifstream file(documents);
    bool isInBlock = false;
    for (std::string line; std::getline(file, line);) {
        auto& blocks = sections.back().blocks;
        if (line.starts_with("### AC")) {
            sections.push_back({line.substr(4, 5), Split(Split(line, ":").at(0), " ").at(2), "", {}});
        } else if (line.starts_with("## ") && sections.size() > 1) {
            sections.emplace_back(); // an introduction, whose blocks are no examples of the code before it
        } else if (line.starts_with("```")) {
            isInBlock = !isInBlock;
            if (isInBlock) {
                blocks.emplace_back(line.substr(3), "\n");
            }
        } else {
            (isInBlock ? blocks.back().second : sections.back().text) += line + "\n";
        }
    }
    sections.erase(std::remove_if(sections.begin() + 1, sections.end(),
                                  [](const Section& section) { return section.code.empty(); }),
                   sections.end());
    return sections;
}

const std::vector<Section> sections = ReadSections();

// A block before the first code. It stands for what an example leaves out.
std::string Default(const std::string& language, const std::string& beginning)
{
    for (const auto& block : sections.front().blocks) {
        if (block.first == language && block.second.starts_with("\n" + beginning)) {
            return block.second;
        }
    }
    throw std::runtime_error("no default that begins with " + beginning);
}

// The wrong one, then the right one. Each ends with its filters; the second leaves out what it has in common with the
// first.
std::vector<Example> ExamplesOf(const Section& section)
{
    std::vector<Example> examples;
    Example example;
    for (const auto& [language, content] : section.blocks) {
        (language == "toml" ? example.toml : language == "sql" ? example.sql : example.filters) = content;
        if (language == "text") {
            examples.push_back(example);
        }
    }
    return examples;
}

// Table names at their full length.
std::string Expanded(std::string toml)
{
    const std::string applications = "zarvona.system.applications.";
    const std::string root = applications + "securitymanager.unified_access_control.";
    for (const auto& [name, before] : std::map<std::string, std::string>{{"repositories", root},
                                                                         {"fields", root},
                                                                         {"codes", applications},
                                                                         {"norvale", applications},
                                                                         {"sites", "zarvona.system."}}) {
        Lines parts = Split(toml, "\n[" + name);
        toml = parts.front();
        for (auto part = parts.begin() + 1; part != parts.end(); ++part) {
            toml += "\n[" + before + name + *part;
        }
    }
    return toml;
}

class CheckTest : public WorkspaceTest {
protected:
    void MakeSecurity(const std::string& name, const std::string& grants) const
    {
        MakeDatabase(name, Split(SampleText("security.sql"), "INSERT").front() +
                               Default("sql", "INSERT INTO security_user") + grants);
    }
};

class DocumentedCheckTest : public CheckTest, public testing::WithParamInterface<Section> {
protected:
    Outcome Check(const Example& example, const std::string& name) const
    {
        const auto shows = [&](const char* table) { return example.toml.find(table) != std::string::npos; };
        Write(name + ".toml", Expanded((shows("\n[repositories") ? "" : Default("toml", "[repositories")) +
                                       example.toml + (shows("\n[fields") ? "" : Default("toml", "[fields"))));
        MakeSecurity(name + ".db", example.sql.empty() ? Default("sql", "INSERT INTO security_perm") : example.sql);
        const std::string command = "acfilter check --strict -c " + name + ".toml";
        const Outcome outcome = Run(command + (example.sql.empty() ? "" : " -s sqlite3://db=" + name + ".db"));
        EXPECT_EQ(outcome.errors, "");
        return outcome;
    }

    void ExpectFilters(const Example& example, const std::string& name) const
    {
        for (const std::string& line : Split(example.filters.substr(1, example.filters.size() - 2), "\n")) {
            const Lines columns = Split(line, ": ");
            const std::string options = " -c " + name + ".toml -s sqlite3://db=" + name + ".db -r documents ";
            ExpectPrints("acfilter filter --log-level 0" + options + columns.at(0),
                         (columns.at(1) == "(empty)" ? "" : columns.at(1)) + "\n");
        }
    }
};

TEST_P(DocumentedCheckTest, FindsTheWrongAndPassesTheRight)
{
    const Section& section = GetParam();
    const std::vector<Example> examples = ExamplesOf(section);
    ASSERT_EQ(examples.size(), 2U);

    const Outcome wrong = Check(examples[0], "wrong");
    EXPECT_EQ(wrong.status, 3);
    EXPECT_THAT(wrong.output, HasSubstr(": " + section.severity + " " + section.code + ": "));
    for (const std::string& line : Split(wrong.output, "\n")) {
        if (const Lines parts = Split(line, ": "); line.starts_with("wrong.toml:")) {
            EXPECT_THAT(section.code + section.text, HasSubstr(parts.at(1).substr(parts.at(1).size() - 5))) << line;
        }
    }
    ExpectFilters(examples[0], "wrong");

    const Outcome right = Check(examples[1], "right");
    EXPECT_EQ(right.status, 0);
    EXPECT_THAT(right.output, testing::StartsWith("no findings\n"));
    ExpectFilters(examples[1], "right");
}

std::vector<Section> SectionsWithExamples()
{
    std::vector<Section> shown = sections;
    std::erase_if(shown, [](const Section& section) { return section.code.empty() || section.blocks.empty(); });
    return shown;
}

INSTANTIATE_TEST_SUITE_P(Codes, DocumentedCheckTest, testing::ValuesIn(SectionsWithExamples()),
                         [](const auto& section) { return section.param.code; });

std::set<std::string> CodesIn(const std::string& text)
{
    const std::regex code("AC[0-9]{3}");
    std::set<std::string> codes;
    for (std::sregex_iterator found(text.begin(), text.end(), code), end; found != end; ++found) {
        codes.insert(found->str());
    }
    return codes;
}

Lines DocumentedCodes()
{
    Lines codes;
    std::transform(sections.begin() + 1, sections.end(), std::back_inserter(codes),
                   [](const Section& section) { return section.code; });
    return codes;
}

// DocumentedCheckTest covers the codes that have examples, tests/cases/commands the others.
TEST_F(CheckTest, EveryCodeIsDocumentedOnceInOrderAndTested)
{
    std::string printed;
    for (const CommandBlock& block : ReadCommandBlocks()) {
        printed += block.script.find("acfilter check") != std::string::npos ? block.output : "";
    }
    const std::set<std::string> broughtAbout = CodesIn(printed);
    const Lines documented = DocumentedCodes();
    EXPECT_TRUE(std::is_sorted(documented.begin(), documented.end(), std::less_equal<>()));
    EXPECT_THAT(broughtAbout, testing::IsSubsetOf(documented));
    for (auto section = sections.begin() + 1; section != sections.end(); ++section) {
        EXPECT_TRUE(!section->blocks.empty() || broughtAbout.count(section->code) != 0) << section->code;
    }
}

// Random rules: where nothing is found, nobody sees more than is granted, and no placeholder is left.
TEST_F(CheckTest, RulesWithoutFindingsShowNobodyMore)
{
    MakeSecurity("s.db", Default("sql", "INSERT INTO security_perm") +
                             "INSERT INTO security_permission SELECT position + 10, grantee_type, grantee, "
                             "'archive.own', 1, resource, 0 FROM security_permission WHERE resource = '%my%';");
    std::mt19937 random(1); // the same cases each time
    const auto pick = [&](const Lines& choices) { return choices[random() % choices.size()]; };
    const Lines templates = {"region %equal_operator% ('%values%')",       "region = '$region$'",
                             "region = '%values%' OR origin = '$region$'", "secret = '%value%'",
                             "region = '%values%' AND x %equal_operator%", "published = 1"};
    std::string toml = "\n[sites.north.applications.norvale.pix.assigning_authority]\nvalue = 'north'\n"
                       "[sites.south]\n[sites.west]\n"
                       "[norvale.pix.assigning_authority]\nvalue = 'west'\n";
    const int count = 1000;
    for (int number = 0; number < count; ++number) {
        const std::string name = "r" + std::to_string(number);
        const Lines settings = Split(Default("toml", "[repositories"), "documents]");
        toml += settings.at(0) + name + "]" + settings.at(1) + "\n[fields.f" + name + "." + name + "]\n";
        for (const Lines& lines : std::vector<Lines>{
                 {"permission_name = 'archive.region'", "permission_name = 'archive.own'"},
                 {"permission_value = 1", "permission_value = 1", "permission_value = 1", "permission_value = 0"},
                 {"my_field = '$region$'", "my_field = '$region$'", "my_field = 'region'", "", ""},
                 {"conditions_delimiter = ' OR '", "conditions_delimiter = ' OR '", ""},
                 {"condition1 = \"" + pick(templates) + "\""},
                 {"condition2 = \"" + pick(templates) + "\"", "condition3 = 'x'", "", ""},
                 {"replace_fields1 = '$region$'", "replace_fields1 = ' $region$'", "", ""},
                 {"mandatory_fields1 = '$region$'", "mandatory_fields1 = '$Region$'", "", ""},
                 {"values_function1 = 'SiteIdToIssuer'", "", "", ""}}) {
            toml += pick(lines) + "\n";
        }
    }
    Write("a.toml", Expanded(toml));
    const std::string options = " -c a.toml -s sqlite3://db=s.db ";
    // AC081 and AC088 are about single users who see less: fay and dan in each repository.
    const std::string findings =
        std::regex_replace(Run("acfilter check --format json" + options).output, std::regex(".*AC08[18].*\n"), "");
    EXPECT_THAT(CodesIn(findings), testing::IsSubsetOf(DocumentedCodes()));
    int passed = 0;
    for (int number = 0; number < count; ++number) {
        const std::string name = "r" + std::to_string(number);
        if (findings.find("\"repository\":\"" + name + "\",\"problem\"") != std::string::npos) {
            continue;
        }
        ++passed;
        const Outcome outcome = Run("acfilter filter -r " + name + options + "ann bob cyd dan eve fay nobody");
        EXPECT_EQ(outcome.errors, "");
        EXPECT_THAT(outcome.output, Not(testing::ContainsRegex("[%$]"))) << name;
        const Lines filters = Split(outcome.output, "\n");
        ASSERT_EQ(filters.size(), 8U);
        EXPECT_THAT(filters[0], testing::ContainsRegex("north|^1 = 0$")) << name;
        EXPECT_THAT(filters[2], HasSubstr("west")) << name;
        EXPECT_NE(filters[3], "") << name;
        EXPECT_EQ(filters[4] + filters[5] + filters[6], "1 = 01 = 0published = 1") << name;
    }
    EXPECT_GT(passed, 15);
}

} // namespace
