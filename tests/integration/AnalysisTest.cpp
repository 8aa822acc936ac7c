// The analysis library in a host that uses the module too.
#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "analysis/check/Check.h"
#include "analysis/trace/Tracer.h"
#include "platform/configuration/CFG_Listing.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

#include <dlfcn.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>

using secm::analysis::NameOf;
using secm::analysis::Trace;
using secm::analysis::Tracer;

namespace {

std::atomic<std::size_t> listedEntries = 0;

} // namespace

// Stands before the configuration library's and counts what it lists.
std::vector<CFG_Entry> CFG_ListEntries(const RWCString& path)
{
    using List = std::vector<CFG_Entry> (*)(const RWCString&);
    static const List list = reinterpret_cast<List>(dlsym(RTLD_NEXT, "_Z15CFG_ListEntriesRK9RWCString"));
    std::vector<CFG_Entry> entries = list(path);
    listedEntries += entries.size();
    return entries;
}

namespace {

using namespace secm::testing;

class AnalysisTest : public WorkspaceTest {
protected:
    AnalysisTest()
    {
        Configure(SampleText("archive.toml"));
        MakeDatabase("security.db", SampleText("security.sql"));
    }

    void Configure(const std::string& text) const
    {
        Write("archive.toml", text);
        setenv("CFG_REPOSITORY", Path("archive.toml").c_str(), 1);
        CFG_Factory::Reload();
    }

    Tracer Connected(const std::string& repository, secm::analysis::WhatIf tried = {}) const
    {
        Tracer tracer(repository, std::move(tried));
        EXPECT_TRUE(tracer.Connect(connection.c_str(), 0));
        return tracer;
    }

    const std::string connection = "sqlite3://db=" + Path("security.db");
};

TEST_F(AnalysisTest, TracesTellTheModulesFilters)
{
    for (std::string repository : {"documents", "archive_search"}) {
        const std::unique_ptr<SECM_AccessControlInterface> module(
            SECM_AccessControlInterface::CreateInstance(repository));
        ASSERT_TRUE(module->InitSecurityConnection(connection.c_str(), 0));
        Tracer tracer = Connected(repository);
        for (const Lines& row : CaseRows("sample_users.txt")) {
            const std::string& user = row.at(0);
            const Trace trace = tracer.Explain({user, "10.0.0.7", false});
            EXPECT_EQ(trace.answer.filter, module->GetAccessControlFilter(user, "10.0.0.7")) << user;
            const Trace byName = tracer.Explain({user, "", true});
            EXPECT_EQ(byName.answer.filter, module->GetAccessControlFilter(user)) << user;
            EXPECT_STREQ(NameOf(byName.answer.outcome), NameOf(trace.answer.outcome)) << user;
        }
    }
}

TEST_F(AnalysisTest, ATraceOutlivesItsTracerAndTheConfiguration)
{
    std::optional<Tracer> tracer(Connected("documents"));
    const Trace trace = tracer->Explain({"hugo", "", false});
    tracer.reset();
    Configure("[zarvona]\n");
    ASSERT_FALSE(trace.fields.empty());
    EXPECT_EQ(trace.fields.front().rule->name, "department");
    EXPECT_EQ(trace.fields.front().conditions.front().rule->number, 1U);
    EXPECT_EQ(trace.fields.front().clause, "department = ('Legal')");
}

TEST_F(AnalysisTest, ATracerWithoutConnectionRefuses)
{
    Tracer tracer("documents");
    EXPECT_THROW(tracer.Explain({"hugo", "", false}), std::runtime_error);
    EXPECT_THROW(tracer.Explain({"hugo", "", true}), std::runtime_error);
    EXPECT_FALSE(tracer.Connect("sqlite3://db=missing.db", 0));
    EXPECT_THROW(tracer.Explain({"hugo", "", false}), std::runtime_error);
}

TEST_F(AnalysisTest, ARepositoryThatIsMissingHasNoRules)
{
    const Tracer tracer("Documents");
    EXPECT_TRUE(tracer.Rules().all.empty());
    EXPECT_EQ(tracer.Rules().settings.hideAllFilter, "");
}

TEST_F(AnalysisTest, ChecksReadEachTableOfManyRepositoriesOnce)
{
    const auto entriesOf = [this](int repositories) {
        const std::string top = "[zarvona.system.applications.securitymanager.unified_access_control.";
        std::string text;
        for (int n = 0; n < repositories; ++n) {
            const std::string name = "r" + std::to_string(n);
            text += top + "repositories." + name + "]\nhide_all_filter = '0'\n" + top + "fields.f." + name +
                    "]\npermission_name = 'p'\npermission_value = 1\ncondition1 = '%values%'\n";
        }
        Configure(text);
        listedEntries = 0;
        EXPECT_FALSE(secm::analysis::ConfigurationCheck().Findings().empty());
        return listedEntries.load();
    };
    const std::size_t ofTen = entriesOf(10);
    const std::size_t ofTwenty = entriesOf(20);
    EXPECT_EQ(entriesOf(30) - ofTwenty, ofTwenty - ofTen);
}

TEST_F(AnalysisTest, TheLibraryOffersNothingOfTheModule)
{
    EXPECT_NE(dlsym(RTLD_DEFAULT, "_ZN4secm8analysis6Tracer7ExplainERKNS0_7RequestE"), nullptr);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "_ZN25SECM_AccessControlManager18ReadConfigurationsEv"), nullptr);
}

} // namespace
