#include "tests/faults/FaultPlayer.h"

#include "tests/faults/CuttingProxy.h"
#include "tests/faults/FailingMalloc.h"
#include "tests/faults/Requests.h"

#include <execinfo.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>

namespace {

using secm::platform::Descriptor;

constexpr unsigned hangSeconds = 15; // longer than the time limits of the requests

const std::map<std::string, CuttingProxy::End> ends = {{"closed", CuttingProxy::End::closed},
                                                       {"reset", CuttingProxy::End::reset},
                                                       {"stalled", CuttingProxy::End::stalled}};

int Require(int result, const char* step)
{
    return result >= 0 ? result : throw std::runtime_error(std::string(step) + " failed");
}

void PrintStack(int number)
{
    std::signal(number, SIG_DFL);
    alarm(2); // printing may hang too
    std::array<void*, 64> frames;
    backtrace_symbols_fd(frames.data(), backtrace(frames.data(), frames.size()), STDERR_FILENO);
    std::raise(number);
}

unsigned short PortOf(const std::string& connection)
{
    const std::string key = "port=";
    return static_cast<unsigned short>(std::stoul(connection.substr(connection.find(key) + key.size())));
}

Descriptor FileInMemory()
{
    return Descriptor(Require(memfd_create("fault", 0), "memfd_create"));
}

std::string Content(const Descriptor& file)
{
    std::string content(static_cast<std::size_t>(lseek(file.Get(), 0, SEEK_END)), '\0');
    Require(static_cast<int>(pread(file.Get(), content.data(), content.size(), 0)), "pread");
    return content;
}

// Writes the number of calls of malloc to `counted`.
[[noreturn]] void Request(const std::string& text, const std::string& road, const Fault& fault, int counted)
{
    WatchForCrashes();
    FailMalloc(fault.kind == "memory" ? fault.number : 0, fault.isLasting);
    const Result result = MakeRequests(text, road);
    dprintf(counted, "%lu", MallocCalls());
    _exit(static_cast<int>(result));
}

// Writes the system calls that it makes fail to `trace`.
[[noreturn]] void Trace(const std::string& text, const std::string& road, const Fault& fault, int trace)
{
    const std::string call = "trace=" + fault.kind.substr(0, fault.kind.find(':'));
    const std::string inject =
        "inject=" + fault.kind + ":when=" + std::to_string(fault.number) + (fault.isLasting ? "+" : "");
    const std::string output = "/proc/self/fd/" + std::to_string(trace);
    const std::string program = std::filesystem::read_symlink("/proc/self/exe");
    alarm(2 * hangSeconds);
    execlp("strace", "strace", "-f", "--seccomp-bpf", "-o", output.c_str(), "-e", call.c_str(), "-e", inject.c_str(),
           program.c_str(), text.c_str(), road.c_str(), "requests", nullptr);
    std::perror("strace");
    _exit(127);
}

} // namespace

void WatchForCrashes()
{
    std::array<void*, 1> frame;
    backtrace(frame.data(), frame.size()); // the first call loads a library
    for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGALRM}) {
        struct sigaction action = {};
        action.sa_handler = PrintStack;
        action.sa_flags = SA_NODEFER;
        sigaction(number, &action, nullptr);
    }
    alarm(hangSeconds);
}

Outcome PlayFault(const std::string& connection, const std::string& road, const Fault& fault)
{
    std::optional<CuttingProxy> proxy;
    std::string text = connection;
    if (const auto end = ends.find(fault.kind); end != ends.end()) {
        proxy.emplace(PortOf(text), CuttingProxy::Cut{fault.number, end->second, fault.isLasting});
        text += " port=" + std::to_string(proxy->Port());
    }
    const Descriptor said = FileInMemory();
    const Descriptor noted = FileInMemory();
    std::array<int, 2> life;
    Require(pipe(life.data()), "pipe");
    const Descriptor childLife(life[0]);
    const pid_t child = Require(fork(), "fork");
    if (child == 0) {
        dup2(said.Get(), STDERR_FILENO);
        if (proxy || fault.kind == "memory") {
            Request(text, road, fault, noted.Get());
        }
        Trace(text, road, fault, noted.Get());
    }
    close(life[1]);
    if (proxy) {
        proxy->Serve(childLife.Get());
    }
    Outcome outcome = {};
    waitpid(child, &outcome.status, 0);
    outcome.said = Content(said);
    if (proxy) {
        outcome.count = proxy->PassedBytes();
        outcome.wasInjected = proxy->HasCut();
    } else if (fault.kind == "memory") {
        outcome.count = std::stoul("0" + Content(noted)); // 0 after a crash
        outcome.wasInjected = outcome.count == 0 || fault.number <= outcome.count;
    } else {
        outcome.wasInjected = Content(noted).find("(INJECTED)") != std::string::npos;
    }
    return outcome;
}
