// Plays faults on the requests of a host: a system call that fails, memory that runs out, a server's reply that ends
// too early. Every answer must be right or refused. run.sh calls it.
//
// Usage: faults CONNECTION ROAD requests
//            makes the requests once, for strace
//        faults CONNECTION ROAD count KIND
//            prints how many faults of the kind memory or closed there can be
//        faults CONNECTION ROAD places
//            prints the numbers of the faults of the kind memory, one for each place that allocates
//        faults CONNECTION ROAD play SECONDS AGAIN KNOWN <FAULTS
//            plays faults for so many seconds (0: all)
//
// FAULTS: one a line, KIND N for the N-th, KIND N+ for the N-th and all after it; see FaultPlayer.h for the kinds.
// AGAIN: the command that plays a fault again, which is put after it.
// KNOWN: the file of known failures.
#include "tests/faults/FailingMalloc.h"
#include "tests/faults/FaultPlayer.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

// Lines "REASON | REGULAR EXPRESSION of the whole failure".
std::vector<std::regex> KnownFailures(const std::string& file)
{
    std::vector<std::regex> known;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (const std::size_t bar = line.find(" | "); bar != std::string::npos && line.front() != '#') {
            known.emplace_back(line.substr(bar + 3));
        }
    }
    return known;
}

// Where a process ended: "libcrypto.so.3(RAND_status) < libpq.so.5 < ...", a library once for functions without a name,
// up to the first library of ours.
std::string PlaceOf(const std::string& stack)
{
    static const std::regex frame("^.*/([^/(]+)(\\([^+)]+|\\().*$");
    std::istringstream lines(stack);
    std::string place;
    std::smatch match;
    bool isBelowSignal = false;
    std::string last;
    for (std::string line; std::getline(lines, line);) {
        if (!std::regex_match(line, match, frame)) {
            continue;
        }
        const std::string library = match[1];
        const std::string function = match[2] == "(" ? library : library + match[2].str() + ")";
        if (isBelowSignal && function != std::exchange(last, function)) {
            place += (place.empty() ? "" : " < ") + function;
        }
        if (library.starts_with("libsecm") || library.starts_with("libSECM")) {
            break;
        }
        isBelowSignal |= library.starts_with("libc.so"); // calls the handler
    }
    return place;
}

// What is wrong with an answer, and where, in one line; empty for one that is right or refused.
std::string FailureOf(const Outcome& outcome)
{
    if (WIFSIGNALED(outcome.status)) {
        const int number = WTERMSIG(outcome.status);
        return (number == SIGALRM ? "hangs" : std::string("crashes (") + strsignal(number) + ")") + " in " +
               PlaceOf(outcome.said);
    }
    const std::string said = outcome.said.substr(0, outcome.said.find_last_not_of('\n') + 1);
    const std::string lastLine = said.substr(said.find_last_of('\n') + 1);
    switch (WEXITSTATUS(outcome.status)) {
    case static_cast<int>(Result::right):
        return "";
    case static_cast<int>(Result::refused):
        return lastLine.starts_with("refused: ") && lastLine != "refused: " ? "" : "gives no reason: " + lastLine;
    case static_cast<int>(Result::wrong):
        return lastLine;
    default:
        return "ends with status " + std::to_string(WEXITSTATUS(outcome.status)) + ": " + lastLine;
    }
}

// Plays the faults of standard input, prints what came of them, and returns whether all answers were right or refused.
bool PlayAll(FaultPlayer& player, unsigned seconds, const std::string& again, const std::string& known)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    const std::vector<std::regex> knownFailures = KnownFailures(known);
    std::map<std::string, unsigned> counts;
    std::string failures;
    std::string kind;
    std::string when;
    while (std::cin >> kind >> when) {
        ++counts["listed"];
        if (seconds != 0 && std::chrono::steady_clock::now() > end) {
            continue;
        }
        const Outcome outcome = player.Play({kind, std::stoul(when), when.back() == '+'});
        const std::string failure = FailureOf(outcome);
        const auto isFailure = [&](const std::regex& one) { return std::regex_match(failure, one); };
        ++counts["played"];
        if (failure.empty()) {
            ++counts[!outcome.wasInjected ? "not reached" : WEXITSTATUS(outcome.status) == 0 ? "right" : "refused"];
        } else if (std::any_of(knownFailures.begin(), knownFailures.end(), isFailure)) {
            ++counts["known"];
        } else {
            ++counts["failed"];
            failures += "  " + again + " " + kind + " " + when + "  # " + failure + "\n";
        }
    }
    std::cout << counts["played"] << " of " << counts["listed"] << " faults: " << counts["right"] << " answered, "
              << counts["refused"] << " refused, " << counts["failed"] << " failed, " << counts["known"]
              << " failed as known, " << counts["not reached"] << " not reached\n"
              << failures;
    return failures.empty() && counts["right"] + counts["refused"] + counts["known"] != 0;
}

} // namespace

int main(int argc, char** argv)
try {
    if (argc < 4) {
        throw std::runtime_error("the top of tests/faults/main.cpp says how it is called");
    }
    const std::string connection = argv[1];
    const std::string road = argv[2];
    const std::string command = argv[3];
    if (command == "requests") {
        WatchForCrashes();
        static_cast<void>(access(argv[3], F_OK)); // marks where the requests begin in a trace
        return static_cast<int>(MakeRequests(connection, road));
    }
    if (command == "places") {
        PrintMallocPlaces();
        return static_cast<int>(MakeRequests(connection, road));
    }
    FaultPlayer player(connection, road);
    if (command == "count" && argc == 5) {
        const Outcome outcome = player.Play({argv[4], ~0UL, false});
        std::cerr << outcome.said;
        std::cout << outcome.count << "\n";
        return outcome.status == 0 ? 0 : 2;
    }
    if (command == "play" && argc == 7) {
        return PlayAll(player, static_cast<unsigned>(std::stoul(argv[4])), argv[5], argv[6]) ? 0 : 1;
    }
    throw std::runtime_error("there is no command '" + command + "'");
} catch (const std::exception& error) {
    std::cerr << "faults: " << error.what() << "\n";
    return 2;
}
