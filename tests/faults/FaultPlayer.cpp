#include "tests/faults/FaultPlayer.h"

#include "tests/faults/CuttingProxy.h"
#include "tests/faults/FailingMalloc.h"

#include <execinfo.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <map>
#include <optional>
#include <stdexcept>
#include <utility>

namespace {

constexpr unsigned hangSeconds = 15; // the time limits of the requests end them before

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
    alarm(2); // this may hang too
    std::array<void*, 64> frames;
    backtrace_symbols_fd(frames.data(), backtrace(frames.data(), frames.size()), STDERR_FILENO);
    std::raise(number);
}

unsigned short PortOf(const std::string& connection)
{
    const std::string key = "port=";
    return static_cast<unsigned short>(std::stoul(connection.substr(connection.find(key) + key.size())));
}

std::string Take(int descriptor)
{
    std::string content(static_cast<std::size_t>(lseek(descriptor, 0, SEEK_END)), '\0');
    Require(static_cast<int>(pread(descriptor, content.data(), content.size(), 0)), "reading what a process said");
    close(descriptor);
    return content;
}

} // namespace

void WatchForCrashes()
{
    std::array<void*, 1> frame;
    backtrace(frame.data(), frame.size()); // loads what it needs
    for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGALRM}) {
        struct sigaction action = {};
        action.sa_handler = PrintStack;
        action.sa_flags = SA_NODEFER;
        sigaction(number, &action, nullptr);
    }
    alarm(hangSeconds);
}

FaultPlayer::FaultPlayer(std::string connectionText, std::string roadName)
    : connection(std::move(connectionText)), road(std::move(roadName))
{
    void* shared = mmap(nullptr, sizeof *mallocCalls, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    mallocCalls = shared != MAP_FAILED ? static_cast<unsigned long*>(shared) : throw std::bad_alloc();
}

Outcome FaultPlayer::Play(const Fault& fault)
{
    std::optional<CuttingProxy> proxy;
    std::string text = connection;
    if (const auto end = ends.find(fault.kind); end != ends.end()) {
        proxy.emplace(PortOf(text), CuttingProxy::Cut{fault.number, end->second, fault.isLasting});
        text += " port=" + std::to_string(proxy->Port());
    }
    const int said = Require(memfd_create("said", 0), "memfd_create");
    const int trace = Require(memfd_create("trace", 0), "memfd_create");
    std::array<int, 2> life;
    Require(pipe(life.data()), "pipe");
    *mallocCalls = 0;
    const pid_t child = Require(fork(), "fork");
    if (child == 0) {
        close(life[0]);
        dup2(said, STDERR_FILENO);
        if (proxy || fault.kind == "memory") {
            _exit(static_cast<int>(Request(text, fault)));
        }
        Trace(text, fault, trace);
    }
    close(life[1]);
    if (proxy) {
        proxy->Serve(life[0]);
    }
    Outcome outcome = {};
    waitpid(child, &outcome.status, 0);
    close(life[0]);
    outcome.said = Take(said);
    const std::string traced = Take(trace);
    if (proxy) {
        outcome.count = proxy->PassedBytes();
        outcome.wasInjected = proxy->HasCut();
    } else if (fault.kind == "memory") {
        outcome.count = *mallocCalls; // none of a process that crashed
        outcome.wasInjected = outcome.count == 0 || fault.number <= outcome.count;
    } else {
        outcome.wasInjected = traced.find("(INJECTED)") != std::string::npos;
    }
    return outcome;
}

Result FaultPlayer::Request(const std::string& text, const Fault& fault)
{
    WatchForCrashes();
    FailMalloc(fault.kind == "memory" ? fault.number : 0, fault.isLasting);
    const Result result = MakeRequests(text, road);
    *mallocCalls = MallocCalls();
    return result;
}

void FaultPlayer::Trace(const std::string& text, const Fault& fault, int trace)
{
    const std::string call = "trace=" + fault.kind.substr(0, fault.kind.find(':'));
    const std::string inject =
        "inject=" + fault.kind + ":when=" + std::to_string(fault.number) + (fault.isLasting ? "+" : "");
    const std::string output = "/proc/self/fd/" + std::to_string(trace);
    alarm(2 * hangSeconds);
    execlp("strace", "strace", "-f", "--seccomp-bpf", "-o", output.c_str(), "-e", call.c_str(), "-e", inject.c_str(),
           program.c_str(), text.c_str(), road.c_str(), "requests", nullptr);
    std::perror("strace");
    _exit(127);
}
