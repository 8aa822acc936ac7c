// Managers while the configuration is changed, reloaded, or replaced by a candidate.
#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "platform/configuration/CFG_Listing.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

using namespace secm::testing;

class ReloadTest : public WorkspaceTest {
protected:
    ReloadTest()
    {
        MakeDatabase("security.db", SampleText("security.sql"));
        setenv("CFG_REPOSITORY", Path("a.toml").c_str(), 1);
    }

    // Every text contains the letter, so that a mixture of two configurations is noticed.
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

    std::shared_ptr<const CFG_Candidate> Candidate(const std::string& letter) const
    {
        Write(letter + ".toml", Configuration(letter));
        return CFG_Factory::Read(Path(letter + ".toml"));
    }

    // The filter of a manager that is made now, once what is listed agrees with it.
    std::string FilterNow() const
    {
        const std::string filter = FilterOf(*Connected());
        const auto entries = CFG_ListEntries(secm::configuration_paths::repositories + std::string("r"));
        EXPECT_TRUE(!entries.empty() && entries.front().value == "hide" + filter.substr(0, 1)) << filter;
        return filter;
    }

    void ExpectRefused(const std::string& place) const
    {
        try {
            CFG_Factory::Reload();
            ADD_FAILURE() << "not refused: " << Read(Path("a.toml"));
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

TEST_F(ReloadTest, NoPartOfAFileIsTakenWhereItsEndIsRequired)
{
    setenv("CFG_REQUIRE_END", "1", 1);
    const std::string whole = SampleText("archive.toml");
    for (std::size_t length = 0; length < whole.size() - 1; ++length) {
        Write("a.toml", whole.substr(0, length));
        ExpectRefused(":");
    }
    Write("a.toml", whole.substr(0, whole.size() - 1)); // the last line without its end
    CFG_Factory::Reload();
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

TEST_F(ReloadTest, EachThreadSeesItsOwnCandidateWhileAnotherIsPutInForce)
{
    Write("a.toml", Configuration("A"));
    CFG_Factory::Reload();
    std::atomic<int> inScope = 0;
    std::atomic<bool> isOver = false;
    std::vector<std::thread> threads;
    for (const std::string letter : {"B", "C"}) {
        threads.emplace_back([&, letter, candidate = Candidate(letter)]() mutable {
            {
                const CFG_CandidateScope scope(std::move(candidate));
                ++inScope;
                do {
                    EXPECT_EQ(FilterNow(), Expected(letter));
                } while (!isOver);
            }
            EXPECT_EQ(FilterNow(), Expected("D"));
        });
    }
    while (inScope < 2) {
        std::this_thread::yield();
    }
    EXPECT_EQ(FilterNow(), Expected("A"));
    CFG_Factory::PutInForce(Candidate("D"));
    EXPECT_EQ(FilterNow(), Expected("D"));
    isOver = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    CFG_Factory::Reload();
    EXPECT_EQ(FilterNow(), Expected("A"));
}

TEST_F(ReloadTest, ScopesNestAndWhatCannotBeReadChangesNothing)
{
    Write("a.toml", Configuration("A"));
    CFG_Factory::Reload();
    Write("wrong.toml", "x = ");
    const auto expectStill = [this](const std::string& letter) {
        EXPECT_THROW(CFG_Factory::Read(Path("wrong.toml")), CFG_Error);
        EXPECT_THROW(CFG_Factory::Read(""), CFG_Error);
        EXPECT_THROW(CFG_Factory::PutInForce(nullptr), CFG_Error);
        EXPECT_THROW(CFG_CandidateScope(nullptr), CFG_Error);
        EXPECT_EQ(FilterNow(), Expected(letter));
    };
    {
        const CFG_CandidateScope outer(Candidate("B"));
        {
            const CFG_CandidateScope inner(Candidate("C"));
            expectStill("C");
        }
        expectStill("B");
    }
    expectStill("A");
}

TEST_F(ReloadTest, WhatACandidateHandsOutOutlivesIt)
{
    Write("a.toml", Configuration("A"));
    CFG_Factory::Reload();
    std::unique_ptr<CFG_RepositoryServices> settings;
    std::unique_ptr<CFG_NameList> names;
    std::unique_ptr<SECM_AccessControlInterface> manager;
    const CFG_RepositoryServices* root = nullptr;
    {
        const CFG_CandidateScope scope(Candidate("B"));
        root = CFG_Factory::GetRepositoryServices();
        settings.reset(root->GetSubTree(secm::configuration_paths::repositories + std::string("r")));
        names.reset(root->GetChildNames(secm::configuration_paths::fields));
        manager = Connected();
    }
    EXPECT_STREQ(settings->GetValue("hide_all_filter", ""), "hideB");
    EXPECT_STREQ(names->GetName(1), "archive.kind");
    EXPECT_EQ(FilterOf(*manager), Expected("B"));
    EXPECT_STREQ(root->GetValueByPath(secm::configuration_paths::repositories + std::string("r\\hide_all_filter")),
                 "hideA");
}

TEST_F(ReloadTest, TheFilesOfACandidateAreThoseThatWereRead)
{
    const std::map<std::string, std::string> contents = {{Path("f/a.toml"), "\xEF\xBB\xBF"
                                                                            "a = 1\r\n"},
                                                         {Path("f/b.toml"), ""},
                                                         {Path("f/c.toml"), "c = 'x\ty'"}};
    for (const auto& [path, content] : contents) {
        Write(std::filesystem::relative(path, folder), content);
    }
    Write("f/.hidden.toml", "hidden = 1");
    std::vector<std::string> order;
    std::map<std::string, std::string> seen;
    const auto candidate = CFG_Factory::Read(Path("f"), [&](const std::string& path, std::string_view content) {
        order.push_back(path);
        seen.emplace(path, content);
    });
    EXPECT_EQ(seen, contents);
    EXPECT_THAT(order, testing::ElementsAre(Path("f/a.toml"), Path("f/b.toml"), Path("f/c.toml")));
    EXPECT_EQ(candidate->Files(), order);
    EXPECT_THAT(CFG_Factory::Read(Path("f/b.toml"))->Files(), testing::ElementsAre(Path("f/b.toml")));
    const auto fail = [](const std::string&, std::string_view) { throw std::out_of_range("observer"); };
    EXPECT_THROW(CFG_Factory::Read(Path("f"), fail), std::out_of_range);
}

} // namespace
