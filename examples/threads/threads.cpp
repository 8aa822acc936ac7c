// Serves requests from several threads, and takes over a changed configuration while they run.
// Usage: threads REPOSITORY CONNECTION THREADS USER...
#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "platform/configuration/CFG_RepositoryServices.h"

#include <atomic>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

std::unique_ptr<SECM_AccessControlInterface> Connected(std::string repository, const char* connection)
{
    std::unique_ptr<SECM_AccessControlInterface> made(SECM_AccessControlInterface::CreateInstance(repository));
    if (made->GetAccessControlFilter("", "").empty()) { // before connecting, this is the hide-all filter
        throw std::runtime_error("no repository '" + repository + "' with a hide_all_filter");
    }
    if (!made->InitSecurityConnection(connection, 5)) {
        throw std::runtime_error("no connection to the security manager");
    }
    return made;
}

// One thread's requests: a manager of its own, and a new one when the configuration has changed.
class Worker {
public:
    Worker(const char* repositoryName, const char* connectionText, const std::atomic<unsigned>& configurationVersion)
        : repository(repositoryName), connection(connectionText), version(configurationVersion)
    {
    }

    std::string FilterOf(const std::string& user)
    {
        if (const unsigned current = version; !manager || current != usedVersion) {
            manager = Connected(repository, connection); // throws: the old one serves no more, and nothing is shown
            usedVersion = current;
        }
        return manager->GetAccessControlFilter(user, "127.0.0.1");
    }

private:
    const char* repository;
    const char* connection;
    const std::atomic<unsigned>& version;
    unsigned usedVersion = 0;
    std::unique_ptr<SECM_AccessControlInterface> manager;
};

} // namespace

int main(int argc, char** argv)
try {
    if (argc < 5) {
        throw std::runtime_error("usage: threads REPOSITORY CONNECTION THREADS USER...");
    }
    const std::vector<std::string> users(argv + 4, argv + argc);
    std::atomic<unsigned> version = 1;
    std::atomic<unsigned> served = 0;
    std::atomic<unsigned> refused = 0;
    std::vector<std::thread> threads;
    for (int count = std::stoi(argv[3]); count > 0; --count) {
        threads.emplace_back([&] {
            Worker worker(argv[1], argv[2], version);
            for (int round = 0; round < 100; ++round) {
                for (const std::string& user : users) {
                    try {
                        worker.FilterOf(user);
                        ++served;
                    } catch (const std::exception&) {
                        ++refused; // no filter: this request is answered with an error
                    }
                }
            }
        });
    }
    for (int reloads = 0; reloads < 10; ++reloads) {
        CFG_Factory::Reload(); // throws, and leaves the old in force, when the new files are wrong
        ++version;
        std::this_thread::yield();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::cout << "served: " << served << ", refused: " << refused << "\n";
} catch (const std::exception& error) {
    std::cerr << "threads: " << error.what() << "\n";
    return 1;
}
