// Serves requests from several threads and reloads the configuration meanwhile. Prints each user's filters: one, as
// long as neither the configuration nor the permissions change. Usage: threads REPOSITORY CONNECTION THREADS USER...
#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "platform/configuration/CFG_RepositoryServices.h"

#include <atomic>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <shared_mutex>
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

// No reload while an object is being made. Requests need no lock.
std::shared_mutex configurationInUse;

// Serves one thread's requests with a manager of its own, and makes a new one when the configuration has changed.
class Worker {
public:
    Worker(const char* repositoryName, const char* connectionText, const std::atomic<unsigned>& configurationVersion)
        : repository(repositoryName), connection(connectionText), version(configurationVersion)
    {
    }

    std::string FilterOf(const std::string& user)
    {
        if (const unsigned current = version; !manager || current != usedVersion) {
            const std::shared_lock<std::shared_mutex> lock(configurationInUse);
            manager = Connected(repository, connection); // when it throws, show nothing and do not use the old one
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
    std::atomic<unsigned> refused = 0;
    std::mutex filtersMutex;
    std::map<std::string, std::set<std::string>> filters;
    std::vector<std::thread> threads;
    for (int count = std::stoi(argv[3]); count > 0; --count) {
        threads.emplace_back([&] {
            Worker worker(argv[1], argv[2], version);
            for (int round = 0; round < 100; ++round) {
                for (const std::string& user : users) {
                    try {
                        std::string filter = worker.FilterOf(user);
                        const std::lock_guard<std::mutex> lock(filtersMutex);
                        filters[user].insert(std::move(filter));
                    } catch (const std::exception&) {
                        ++refused; // no filter: this request is answered with an error
                    }
                }
            }
        });
    }
    for (int reloads = 0; reloads < 10; ++reloads) {
        {
            const std::unique_lock<std::shared_mutex> lock(configurationInUse);
            CFG_Factory::Reload(); // when the new files are wrong, throws and leaves the old ones in force
        }
        ++version;
        std::this_thread::yield();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const auto& [user, given] : filters) {
        for (const std::string& filter : given) {
            std::cout << user << ": " << filter << "\n";
        }
    }
    std::cout << "refused: " << refused << "\n";
} catch (const std::exception& error) {
    std::cerr << "threads: " << error.what() << "\n";
    return 1;
}
