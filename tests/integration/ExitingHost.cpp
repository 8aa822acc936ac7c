// A host that calls exit() while its threads connect and make requests. It also blocks a signal after connecting and
// waits for it, which must reach no other thread. Usage: exiting_host REPOSITORY CONNECTION USER MICROSECONDS
#include "SECM_AccessControl/SECM_AccessControlInterface.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

constexpr int wrongFilter = 9;

std::unique_ptr<SECM_AccessControlInterface> Connected(std::string repository, const char* connection)
{
    std::unique_ptr<SECM_AccessControlInterface> made(SECM_AccessControlInterface::CreateInstance(repository));
    if (!made->InitSecurityConnection(connection, 5)) {
        throw std::runtime_error("not connected");
    }
    return made;
}

void RequireFilter(const std::string& filter, const std::string& expected)
{
    if (filter != expected) {
        _exit(wrongFilter);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        return 2;
    }
    const auto manager = Connected(argv[1], argv[2]);
    const std::string expected = manager->GetAccessControlFilter(argv[3], "");
    sigset_t waited;
    sigemptyset(&waited);
    sigaddset(&waited, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &waited, nullptr);
    kill(getpid(), SIGUSR1);
    int received = 0;
    sigwait(&waited, &received);
    // On PostgreSQL one thread connects again and again. On SQLite, SOCI does not allow that while exit() runs.
    const bool mayConnect = std::string(argv[2]).starts_with("postgresql");
    for (const bool connects : {false, false, mayConnect}) {
        auto own = std::make_shared<std::unique_ptr<SECM_AccessControlInterface>>(Connected(argv[1], argv[2]));
        std::thread([=, &expected] {
            while (true) {
                RequireFilter((*own)->GetAccessControlFilter(argv[3], ""), expected);
                RequireFilter((*own)->GetAccessControlFilter(argv[3]), expected);
                if (connects) {
                    *own = Connected(argv[1], argv[2]);
                }
            }
        }).detach();
    }
    usleep(static_cast<useconds_t>(std::stoi(argv[4])));
    std::exit(0);
}
