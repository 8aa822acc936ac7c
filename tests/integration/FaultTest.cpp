// Requests while their server stops, hangs or loses a table.
#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

namespace {

using namespace secm::testing;

// One thread's requests, on a manager of its own.
struct Client {
    std::atomic<unsigned> served = 0;
    std::atomic<unsigned> refused = 0;
    std::string wrong; // wrong filters, and refusals that do not name the operation
    std::thread thread;

    void Work(const std::string& connection, const std::vector<Lines>& users, const std::atomic<bool>& isOver)
    {
        std::string repository = "documents";
        const std::unique_ptr<SECM_AccessControlInterface> manager(
            SECM_AccessControlInterface::CreateInstance(repository));
        wrong = manager->InitSecurityConnection(connection.c_str(), 2) ? "" : "not connected\n";
        for (unsigned n = 0; !isOver; ++n) {
            const Lines& user = users.at(n / 2 % users.size());
            try {
                const std::string filter = n % 2 == 0 ? manager->GetAccessControlFilter(user.at(0), "")
                                                      : manager->GetAccessControlFilter(user.at(0));
                wrong += filter == user.at(2) ? "" : user.at(0) + ": " + filter + "\n";
                ++served;
            } catch (const std::runtime_error& error) {
                const std::string refusal = error.what();
                const bool namesOperation =
                    refusal.starts_with("connecting: ") || refusal.starts_with("reading the user");
                wrong += namesOperation ? "" : refusal + "\n";
                ++refused;
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        }
    }
};

class FaultTest : public WorkspaceTest, public testing::WithParamInterface<Lines> {
protected:
    /// Sets a count to 0, runs a command, and waits until each client has this many answers; a minute at most.
    void ExpectAfter(const std::string& command, std::atomic<unsigned> Client::*count, unsigned answers)
    {
        std::for_each(clients.begin(), clients.end(), [&](Client& client) { client.*count = 0; });
        ExpectPrints(command, "");
        const auto hasThem = [&](const Client& client) { return client.*count >= answers; };
        for (int tries = 0; !std::all_of(clients.begin(), clients.end(), hasThem); ++tries) {
            ASSERT_LT(tries, 6000) << "after " << command;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    std::array<Client, 4> clients;
};

TEST_P(FaultTest, RequestsAreAnsweredRightlyOrRefused)
{
    const Outcome started = Run(GetParam().at(1));
    ASSERT_EQ(started.errors, "");
    const std::string connection = started.output.substr(0, started.output.find('\n'));
    ASSERT_THAT(connection, testing::StartsWith("postgresql://"));
    setenv("CFG_REPOSITORY", SAMPLE_FOLDER "/archive.toml", 1);
    CFG_Factory::Reload();
    const std::vector<Lines> users = CaseRows("sample_users.txt");
    const unsigned everyUserTwice = 4 * static_cast<unsigned>(users.size()); // on both roads
    std::atomic<bool> isOver = false;
    for (Client& client : clients) {
        client.thread = std::thread([&] { client.Work(connection, users, isOver); });
    }
    ExpectAfter("true", &Client::served, everyUserTwice);
    ExpectAfter(GetParam().at(2), &Client::refused, 1);
    ExpectAfter(GetParam().at(3), &Client::served, 0);
    ExpectAfter("true", &Client::served, everyUserTwice);
    isOver = true;
    for (Client& client : clients) {
        client.thread.join();
        EXPECT_EQ(client.wrong, "");
    }
    ExpectPrints("server stop a; server stop b", "");
}

INSTANTIATE_TEST_SUITE_P(OfPostgreSql, FaultTest, testing::ValuesIn(CaseRows("faults.txt")), CaseName);

} // namespace
