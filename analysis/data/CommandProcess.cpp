#include "analysis/data/CommandProcess.h"

#include "analysis/data/DataSource.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>
#include <thread>

namespace secm::analysis {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t longestAnswerBytes = 16U << 20U;
constexpr std::size_t lastWordsBytes = 500;
constexpr auto patienceAtTheEnd = std::chrono::milliseconds(2000);

void CloseDescriptor(int& descriptor)
{
    if (descriptor >= 0) {
        close(descriptor);
        descriptor = -1;
    }
}

void RequireCall(bool holds, const char* what)
{
    if (!holds) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

} // namespace

CommandProcess::CommandProcess(const std::vector<std::string>& words)
{
    try {
        Start(words);
    } catch (...) {
        CloseDescriptor(input);
        CloseDescriptor(output);
        CloseDescriptor(errors);
        throw;
    }
}

void CommandProcess::Start(const std::vector<std::string>& words)
{
    // The input is a socket, because writing to it can be kept from raising SIGPIPE in the host.
    std::array<int, 2> inputs{};
    std::array<int, 2> outputs{};
    std::array<int, 2> errorOutputs{};
    RequireCall(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, inputs.data()) == 0, "socketpair");
    input = inputs[0];
    const std::unique_ptr<int, void (*)(int*)> inputOfProgram(&inputs[1], [](int* end) { CloseDescriptor(*end); });
    shutdown(inputs[1], SHUT_WR);
    RequireCall(pipe2(outputs.data(), O_CLOEXEC) == 0, "pipe");
    output = outputs[0];
    const std::unique_ptr<int, void (*)(int*)> outputOfProgram(&outputs[1], [](int* end) { CloseDescriptor(*end); });
    RequireCall(pipe2(errorOutputs.data(), O_CLOEXEC) == 0, "pipe");
    errors = errorOutputs[0];
    const std::unique_ptr<int, void (*)(int*)> errorsOfProgram(&errorOutputs[1],
                                                               [](int* end) { CloseDescriptor(*end); });
    for (const int descriptor : {input, output, errors}) {
        RequireCall(fcntl(descriptor, F_SETFL, O_NONBLOCK) == 0, "fcntl");
    }

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, inputs[1], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, outputs[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errorOutputs[1], STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigaddset(&signals, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str())); // not changed
    }
    arguments.push_back(nullptr);
    const int error = posix_spawnp(&process, arguments.front(), &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        process = -1;
        throw DataError(fmt::format("cannot start '{}': {}", words.front(), std::strerror(error)));
    }
}

CommandProcess::~CommandProcess()
{
    CloseDescriptor(input);
    CloseDescriptor(output);
    CloseDescriptor(errors);
    if (process > 0 && !Reap(patienceAtTheEnd)) {
        kill(process, SIGKILL);
        waitpid(process, &status, 0);
    }
}

// False: the end of the stream.
bool CommandProcess::ReadAvailable(int descriptor, std::string& text)
{
    std::array<char, 65536> buffer{};
    for (;;) {
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
            if (static_cast<std::size_t>(count) == buffer.size()) {
                continue;
            }
        }
        return count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR));
    }
}

CommandProcess::End CommandProcess::Ask(const std::string& question, std::chrono::seconds limit, std::string& answer)
{
    const std::string line = question + "\n";
    std::string_view unsent = line;
    const Clock::time_point deadline = Clock::now() + limit;
    for (;;) {
        if (const std::size_t end = received.find('\n'); end != std::string::npos && unsent.empty()) {
            answer = received.substr(0, end);
            received.erase(0, end + 1);
            return End::answered;
        }
        if (received.size() > longestAnswerBytes) {
            throw DataError("the command wrote a line of more than 16 MiB");
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0) {
            return End::timedOut;
        }
        std::array<pollfd, 3> ends{
            {{output, POLLIN, 0}, {errors, POLLIN, 0}, {unsent.empty() ? -1 : input, POLLOUT, 0}}};
        if (poll(ends.data(), ends.size(), static_cast<int>(std::min<long>(left, 1'000'000'000))) < 0) {
            RequireCall(errno == EINTR, "poll");
            continue;
        }
        if (ends[1].revents != 0) {
            if (!ReadAvailable(errors, said)) {
                CloseDescriptor(errors);
            }
            said.erase(0, said.size() - std::min(said.size(), lastWordsBytes));
        }
        if (ends[2].revents != 0) {
            const ssize_t count = send(input, unsent.data(), unsent.size(), MSG_NOSIGNAL);
            if (count > 0) {
                unsent.remove_prefix(static_cast<std::size_t>(count));
            } else if (count < 0 && errno != EAGAIN && errno != EINTR) {
                return End::ended;
            }
        }
        if (ends[0].revents != 0 && !ReadAvailable(output, received) && received.find('\n') == std::string::npos) {
            return End::ended;
        }
    }
}

std::string CommandProcess::LastWords()
{
    CloseDescriptor(input);
    const bool hasEnded = Reap(patienceAtTheEnd);
    if (errors >= 0) {
        ReadAvailable(errors, said);
    }
    std::string how = "closed its output";
    if (hasEnded) {
        how = WIFSIGNALED(status) ? fmt::format("was ended by signal {}", WTERMSIG(status))
                                  : fmt::format("ended with status {}", WEXITSTATUS(status));
    }
    said.erase(said.find_last_not_of(" \r\n") + 1);
    said.erase(0, said.size() - std::min(said.size(), lastWordsBytes));
    return how + (said.empty() ? ", and wrote nothing to its standard error" : "; it wrote: " + said);
}

bool CommandProcess::Reap(std::chrono::milliseconds patience)
{
    const Clock::time_point deadline = Clock::now() + patience;
    while (process > 0) {
        const pid_t ended = waitpid(process, &status, WNOHANG);
        if (ended == process || (ended < 0 && errno == ECHILD)) {
            process = -1;
        } else if (Clock::now() > deadline) {
            return false;
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
    return true;
}

} // namespace secm::analysis
