// What becomes of managers while the configuration changes under them, for better or worse.
#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>

namespace {

class ReloadTest : public WorkspaceTest {
protected:
    ReloadTest()
    {
        MakeDatabase("security.db", SampleText("security.sql"));
        setenv("CFG_REPOSITORY", Path("a.toml").c_str(), 1);
    }

    // Every text of it carries the letter, so that a mixture of two would show.
    static std::string Configuration(const std::string& letter)
    {
        const std::string top = "[zarvona.system.applications.securitymanager.unified_access_control.";
        std::string text = top + "repositories.r]\nhide_all_filter = 'hide" + letter + "'\nfilter_delimiter = '-" +
                           letter + "-'\nvalue_multiplicity_delimiter = '" + letter +
                           "'\nmultiple_equal_operator = 'in" + letter + "'\n";
        for (const std::string field : {"archive.department", "archive.kind"}) {
            text += top + "fields.\"" + field + "\".r]\npermission_name = '" + field +
                    "'\npermission_value = 1\ncondition1 = '" + letter + " %equal_operator% %values%'\n";
        }
        return text;
    }

    static std::string FilterOf(SECM_AccessControlInterface& manager)
    {
        return manager.GetAccessControlFilter("nils", "");
    }
    static std::string Expected(const std::string& letter)
    {
        return letter + "  Finance-" + letter + "-" + letter + " in" + letter + " CON" + letter + "INV";
    }

    std::unique_ptr<SECM_AccessControlInterface> Connected() const
    {
        std::string repository = "r";
        std::unique_ptr<SECM_AccessControlInterface> manager(SECM_AccessControlInterface::CreateInstance(repository));
        EXPECT_TRUE(manager->InitSecurityConnection(("sqlite3://db=" + Path("security.db")).c_str(), 5));
        return manager;
    }

    void ExpectRefused(const std::string& place) const
    {
        try {
            CFG_Factory::Reload();
            ADD_FAILURE() << "taken: " << Read(Path("a.toml"));
        } catch (const CFG_Error& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(Path("a.toml") + place));
        }
    }
};

TEST_F(ReloadTest, AManagerIsWhollyOfTheOldOrTheNew)
{
    Write("a.toml", Configuration("A"));
    CFG_Factory::Reload();
    std::atomic<bool> isOver = false;
    std::vector<std::thread> threads;
    for (int count = 0; count < 3; ++count) {
        threads.emplace_back([&isOver, manager = std::shared_ptr<SECM_AccessControlInterface>(Connected())] {
            do {
                EXPECT_EQ(FilterOf(*manager), Expected("A"));
            } while (!isOver);
        });
    }
    const std::string last = "condition1 = 'B %equal_operator% %values%'\n";
    for (std::size_t cut = 1; cut < last.size() - 1; cut += 5) {
        const std::string letter = cut % 2 == 0 ? "A" : "B";
        Write("a.toml", Configuration(letter));
        CFG_Factory::Reload();
        const std::string whole = Configuration("B");
        Write("a.toml", whole.substr(0, whole.size() - last.size() + cut)); // while somebody writes it
        ExpectRefused(":13:");
        EXPECT_EQ(FilterOf(*Connected()), Expected(letter));
        std::filesystem::remove(Path("a.toml"));
        ExpectRefused(":1:1: cannot be opened");
        EXPECT_EQ(FilterOf(*Connected()), Expected(letter));
    }
    isOver = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
}

// Each GetRepositoryServices here is a first load, because none before it has succeeded.
TEST_F(ReloadTest, NoPartOfAFileIsTakenWhereItsEndIsRequired)
{
    setenv("CFG_REQUIRE_END", "1", 1);
    const std::string whole = SampleText("archive.toml");
    for (std::size_t length = 0; length < whole.size() - 1; ++length) {
        Write("a.toml", whole.substr(0, length));
        EXPECT_THROW(CFG_Factory::GetRepositoryServices(), CFG_Error) << length;
        ExpectRefused(":");
    }
    Write("a.toml", whole.substr(0, whole.size() - 1)); // the last line without its end
    EXPECT_NE(CFG_Factory::GetRepositoryServices(), nullptr);
    Write("a.toml", whole);
    CFG_Factory::Reload();
}

TEST_F(ReloadTest, AFileThatChangesWhileItIsReadIsRefused)
{
    Write("a.toml", Configuration("A") + std::string(10'000'000, '#'));
    std::atomic<bool> isOver = false;
    std::thread writer([&] {
        for (int second = 0; !isOver; ++second) {
            const timespec times[] = {{second, 0}, {second, 0}};
            utimensat(AT_FDCWD, Path("a.toml").c_str(), times, 0);
        }
    });
    bool isRefused = false;
    for (int tries = 0; !isRefused && tries < 100; ++tries) {
        try {
            CFG_Factory::Reload();
        } catch (const CFG_Error& error) {
            isRefused = std::string(error.what()).find("the file changed while it was read") != std::string::npos;
        }
    }
    EXPECT_TRUE(isRefused);
    isOver = true;
    writer.join();
    CFG_Factory::Reload();
}

} // namespace
