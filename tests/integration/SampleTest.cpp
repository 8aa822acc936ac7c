// The sample: what each of its users may see.
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

namespace {

using namespace secm::testing;

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
    const std::string filter = "acfilter filter -c $SAMPLE/archive.toml -s '" + connection + "' --users-from users.txt";
    for (const std::string road : {"", " --no-login"}) {
        ExpectPrints(filter + road + " -r documents", filters);
        ExpectPrints(filter + road + " -r archive_search", queries);
    }
    Write("counts.sql", countStatements);
    ExpectPrints("sqlite3 documents.db <counts.sql", counts);
}

ON_BOTH_ENGINES(SampleTest);

} // namespace
