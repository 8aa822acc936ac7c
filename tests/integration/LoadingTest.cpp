// The module as a library: what it offers, what it does when it is loaded, and what it leaves behind.
#include "tests/integration/Workspace.h"

using testing::HasSubstr;

namespace {

class LoadingTest : public WorkspaceTest {
protected:
    LoadingTest()
    {
        Write("archive.toml", SampleText("archive.toml"));
        MakeDatabase("security.db", SampleText("security.sql"));
    }

    /// The loader on the libraries in `libraries`.
    Outcome Load(const std::string& libraries, const std::string& times) const
    {
        return Run("CFG_REPOSITORY=archive.toml " LOADER " " + libraries + "/" MODULE_FILE " " + times +
                   " documents sqlite3://db=security.db hugo");
    }
};

const std::string libraries = LIBRARY_FOLDER;
const std::string before = "administration library before connecting: 0, ";

TEST_F(LoadingTest, ExportsItsOperationsAndNothingElse)
{
    // The variants of a constructor or destructor are one operation; a compiler may leave out those that nobody can
    // call.
    EXPECT_EQ(
        Run("nm -D --defined-only -f posix " + libraries +
            "/" MODULE_FILE " | sed -E 's/ .*//; s/([CD])[012]Ev$/\\1xEv/' | sort -u")
            .output,
        "_ZN24SecurityManagerInterfaceCxEv\n_ZN24SecurityManagerInterfaceDxEv\n"
        "_ZN27SECM_AccessControlInterface14CreateInstanceERNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE\n");
}

TEST_F(LoadingTest, RunsOneInitialiserOfItsOwn)
{
    EXPECT_EQ(
        Run("nm " + libraries + "/" MODULE_FILE " | sed -nE 's/.* (_GLOBAL__sub_I_[A-Za-z.]*)$/\\1/p' | grep -v cold")
            .output,
        "_GLOBAL__sub_I_ErrorContext.cpp\n");
}

TEST_F(LoadingTest, IsLoadedUsedAndUnloadedAThousandTimes)
{
    const Outcome outcome = Load(libraries, "1000");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    std::string expected;
    for (int times = 0; times < 1000; ++times) {
        expected += before + "connected: 1, after: 1, filter: department = ('Legal')\n";
    }
    EXPECT_EQ(outcome.output, expected + "module or security manager left behind: 0\n");
}

TEST_F(LoadingTest, SaysWhyTheAdministrationLibraryCannotBeOpened)
{
    const std::string filter =
        ", after: 0, filter: department = ('Legal')\nmodule or security manager left behind: 0\n";
    Run("mkdir own && cp -L " + libraries + "/*.so.* own && rm own/libsecm_admin.so.*");
    const Outcome missing = Load("own", "1");
    EXPECT_THAT(
        missing.output,
        testing::StartsWith(before + "exception: the administration library cannot be opened: libsecm_admin.so."));
    EXPECT_THAT(missing.output, testing::EndsWith(filter)); // who logs in is served
    Run("cp own/libtmrlog.so." MAJOR_VERSION " own/libsecm_admin.so." MAJOR_VERSION);
    EXPECT_THAT(Load("own", "1").output,
                testing::AllOf(HasSubstr("has no entry point"), HasSubstr("getSECM_Interface")));
    Run("echo damaged > own/libsecm_admin.so." MAJOR_VERSION);
    EXPECT_THAT(Load("own", "1").output, HasSubstr("exception: the administration library cannot be opened: "));
}

} // namespace
