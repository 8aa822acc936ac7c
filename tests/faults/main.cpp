// Plays faults on the requests of a host: a system call fails, memory runs out, or a server's reply ends too early.
// Every answer must be right or refused. run.sh calls it, in the folder of the repository.
//
// Usage: faults CONNECTION ROAD requests
//            makes the requests once, for strace
//        faults CONNECTION ROAD count KIND
//            prints how many faults of the kind memory or closed there can be
//        faults CONNECTION ROAD places
//            prints the numbers of the faults of the kind memory, one for each place that allocates
//        faults CONNECTION ROAD play SECONDS <FAULTS
//            plays faults for this time (0: all)
//
// FAULTS: one a line. KIND N is the N-th, KIND N+ the N-th and all later ones; see FaultPlayer.h for the kinds.
#include "tests/faults/FailingMalloc.h"
#include "tests/faults/FaultPlayer.h"
#include "tests/faults/Requests.h"

#include <sys/wait.h>
#include <unistd.h>

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

namespace {

// known.txt has lines "REASON | REGULAR EXPRESSION of the whole failure".
bool IsKnown(const std::string& failure)
{
    std::ifstream lines("tests/faults/known.txt");
    for (std::string line; std::getline(lines, line);) {
        const std::size_t bar = line.find(" | ");
        if (bar != std::string::npos && line.front() != '#' &&
            std::regex_match(failure, std::regex(line.substr(bar + 3)))) {
            return true;
        }
    }
    return false;
}

// Where a process ended, from the printed stack: "libcrypto.so.3(RAND_status) < libpq.so.5 < ...", up to our first
// library. Neighbouring functions without a name count as one.
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
        isBelowSignal |= library.starts_with("libc.so"); // it calls the signal handler
    }
    return place;
}

// What is wrong with an answer, and where, in one line. Empty: the answer is right or refused with a reason.
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

// Plays the faults of standard input and prints the counts and the failures, as "  KIND N  # FAILURE". False when there
// are failures, or no fault was injected.
bool PlayAll(const std::string& connection, const std::string& road, unsigned seconds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    std::map<std::string, unsigned> counts;
    std::string failures;
    std::string kind;
    std::string when;
    while (std::cin >> kind >> when) {
        ++counts["listed"];
        if (seconds != 0 && std::chrono::steady_clock::now() > end) {
            continue;
        }
        const Outcome outcome = PlayFault(connection, road, {kind, std::stoul(when), when.back() == '+'});
        const std::string failure = FailureOf(outcome);
        ++counts["played"];
        if (failure.empty()) {
            ++counts[!outcome.wasInjected ? "not reached" : WEXITSTATUS(outcome.status) == 0 ? "right" : "refused"];
        } else if (IsKnown(failure)) {
            ++counts["known"];
        } else {
            ++counts["failed"];
            failures += "  " + kind + " " + when + "  # " + failure + "\n";
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
        throw std::runtime_error("see the usage at the top of tests/faults/main.cpp");
    }
    const std::string connection = argv[1];
    const std::string road = argv[2];
    const std::string command = argv[3];
    if (command == "requests") {
        WatchForCrashes();
        static_cast<void>(access(argv[3], F_OK)); // marks the start of the requests in a trace
        return static_cast<int>(MakeRequests(connection, road));
    }
    if (command == "places") {
        PrintMallocPlaces();
        return static_cast<int>(MakeRequests(connection, road));
    }
    if (command == "count" && argc == 5) {
        const Outcome outcome = PlayFault(connection, road, {argv[4], ~0UL, false});
        std::cerr << outcome.said;
        std::cout << outcome.count << "\n";
        return outcome.status == 0 ? 0 : 2;
    }
    if (command == "play" && argc == 5) {
        return PlayAll(connection, road, static_cast<unsigned>(std::stoul(argv[4]))) ? 0 : 1;
    }
    throw std::runtime_error("there is no command '" + command + "'");
} catch (const std::exception& error) {
    std::cerr << "faults: " << error.what() << "\n";
    return 2;
}
