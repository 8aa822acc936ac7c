// The command line on the sample, and on everything that an administrator may get wrong.
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

using testing::HasSubstr;

namespace {

const std::string acfilter = ACFILTER;

using SampleTest = EngineTest;

TEST_P(SampleTest, EveryUserSeesWhatTheyMayOnBothRoads)
{
    MakeDatabase("documents.db", SampleText("documents.sql"));
    Write("users.txt", SampleText("users.txt"));
    std::string users, counts, filters, queries, countStatements;
    for (const Lines& row : CaseRows("sample_users.txt")) {
        users += row.at(0) + "\n";
        counts += row.at(1) + "\n";
        filters += row.at(2) + "\n";
        queries += row.at(3) + "\n";
        countStatements += "SELECT count(*) FROM documents WHERE " + (row.at(2).empty() ? "1" : row.at(2)) + ";\n";
    }
    EXPECT_EQ(SampleText("users.txt"), users);
    const std::string filter =
        acfilter + " filter -c " SAMPLE_FOLDER "/archive.toml -s '" + connection + "' --users-from users.txt -r ";
    for (const std::string road : {"", " --no-login"}) {
        EXPECT_EQ(Run(filter + "documents" + road).output, filters);
        EXPECT_EQ(Run(filter + "archive_search" + road).output, queries);
    }
    Write("counts.sql", countStatements);
    EXPECT_EQ(Run("sqlite3 documents.db < counts.sql").output, counts);
}

ON_BOTH_ENGINES(SampleTest);

class CommandLineTest : public WorkspaceTest, public testing::WithParamInterface<Lines> {};

TEST_P(CommandLineTest, IsAnswered)
{
    Write("archive.toml", SampleText("archive.toml"));
    MakeDatabase("security.db", SampleText("security.sql"));
    Write("notes.txt", "these are notes and no database");
    Write("broken.toml", "[a]\nb = \n");
    Write("users.txt", SampleText("users.txt"));
    Write("nul.txt", std::string("hugo\nve\0ra\n", 11));
    Write("names.txt", "\357\273\277hugo\r\n\n\r\nom\377\nvera");
    for (const auto& database : std::filesystem::directory_iterator(CASES_FOLDER "/databases")) {
        MakeDatabase(database.path().stem().string() + ".db", SampleText("security.sql") + Read(database.path()));
    }
    const std::string shorthands = "A=" + acfilter +
                                   "; F=\"$A filter\"; X=\"$A explain\"; R=\"$A report\"; I=\"$A diff\"; S='-c "
                                   "archive.toml -s sqlite3://db=security.db -r documents'; "
                                   "L=" LIBRARY_FOLDER "; M=" MODULE_FILE "; LOADER=" LOADER "; T=" THREADS
                                   "; E=" EXITING_HOST "; DOCS=" SAMPLE_FOLDER "/../../docs; "
                                   "D=" CASES_FOLDER "/databases; SAMPLE=" SAMPLE_FOLDER "/security.sql; ";
    const Outcome outcome = Run(databaseCommands + shorthands + GetParam().at(2));
    EXPECT_EQ(std::to_string(outcome.status), GetParam().at(1)) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr(GetParam().at(3)));
    EXPECT_EQ(outcome.output, GetParam().at(4));
    EXPECT_THAT(Run("ls *missing* 2>&1").output, testing::Not(HasSubstr("missing.db\n")));
}

INSTANTIATE_TEST_SUITE_P(Table, CommandLineTest, testing::ValuesIn(CaseRows("command_lines.txt")), CaseName);

} // namespace
