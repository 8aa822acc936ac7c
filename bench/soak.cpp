// Repeats one operation many times and prints whether memory and open descriptors grow.
// Usage: soak requests|managers|reloads COUNT REPOSITORY CONNECTION USER...
#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "platform/configuration/CFG_RepositoryServices.h"

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int reports = 10;

std::unique_ptr<SECM_AccessControlInterface> Created(std::string repository)
{
    return std::unique_ptr<SECM_AccessControlInterface>(SECM_AccessControlInterface::CreateInstance(repository));
}

long ResidentKilobytes()
{
    long pages = 0;
    long residentPages = 0;
    std::ifstream("/proc/self/statm") >> pages >> residentPages;
    return residentPages * (sysconf(_SC_PAGESIZE) / 1024);
}

long OpenDescriptors()
{
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return std::distance(begin(descriptors), end(descriptors)) - 1; // without the iterator's own
}

void Repeat(long count, const std::function<void(long)>& step)
{
    const auto start = Clock::now();
    std::printf("%12s %10s %14s %12s\n", "done", "seconds", "resident kB", "descriptors");
    const auto report = [&](long done) {
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        std::printf("%12ld %10.2f %14ld %12ld\n", done, seconds, ResidentKilobytes(), OpenDescriptors());
        std::fflush(stdout);
    };
    report(0);
    for (long done = 1; done <= count; ++done) {
        step(done);
        if (done * reports / count != (done - 1) * reports / count) {
            report(done);
        }
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("peak: %ld kB\n", usage.ru_maxrss);
}

// Throws when an answer differs from the first one for the same user.
void SoakRequests(long count, const std::string& repository, const char* connection,
                  const std::vector<std::string>& users)
{
    const auto start = Clock::now();
    const auto manager = Created(repository);
    if (users.empty() || !manager->InitSecurityConnection(connection, 5)) {
        throw std::runtime_error("no users, or no connection");
    }
    std::map<std::string, std::string> first = {{users.front(), manager->GetAccessControlFilter(users.front(), "")}};
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
    std::printf("created, connected and asked once: %.1f ms\n", elapsed.count());
    Repeat(count, [&](long n) {
        const std::string& user = users[static_cast<std::size_t>(n) % users.size()];
        const std::string filter =
            n % 2 == 0 ? manager->GetAccessControlFilter(user) : manager->GetAccessControlFilter(user, "127.0.0.1");
        if (first.try_emplace(user, filter).first->second != filter) {
            throw std::runtime_error("another filter for " + user + ": " + filter);
        }
    });
}

} // namespace

int main(int argc, char** argv)
try {
    const std::string what = argc > 4 ? argv[1] : "";
    const long count = argc > 4 ? std::stol(argv[2]) : 0;
    if (what == "requests") {
        SoakRequests(count, argv[3], argv[4], std::vector<std::string>(argv + 5, argv + argc));
    } else if (what == "managers") {
        Repeat(count, [&](long) { Created(argv[3]); });
    } else if (what == "reloads") {
        Repeat(count, [&](long) {
            CFG_Factory::Reload();
            Created(argv[3]);
        });
    } else {
        throw std::runtime_error("usage: soak requests|managers|reloads COUNT REPOSITORY CONNECTION USER...");
    }
} catch (const std::exception& error) {
    std::fprintf(stderr, "soak: %s\n", error.what());
    return 1;
}
