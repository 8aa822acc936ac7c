#include "platform/logging/spdlog/LineSink.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace {

constexpr mode_t readAndWriteForAll = 0666; // less the process's mask
constexpr int waitForever = -1;
constexpr const char* noLogFile = "it is neither a file nor a terminal; name a file";

[[noreturn]] void RefuseByErrno()
{
    throw std::runtime_error(std::strerror(errno));
}

int NotNegative(int result)
{
    if (result < 0) {
        RefuseByErrno();
    }
    return result;
}

void Close(int descriptor)
{
    if (descriptor != STDERR_FILENO) {
        close(descriptor);
    }
}

// Whether `path` leads to what the process writes to already, as /dev/stdout and /dev/stderr do. Opened again, a pipe
// or a socket would be refused, and a file would be written from its beginning.
bool IsPathOf(int descriptor, const std::string& path)
{
    struct stat named {};
    struct stat open {};
    return stat(path.c_str(), &named) == 0 && fstat(descriptor, &open) == 0 && named.st_dev == open.st_dev &&
           named.st_ino == open.st_ino;
}

// A pipe that nobody reads would hold up every request.
void RequireLogFile(int descriptor)
{
    struct stat found {};
    NotNegative(fstat(descriptor, &found));
    if (!S_ISREG(found.st_mode) && !S_ISCHR(found.st_mode)) {
        throw std::runtime_error(noLogFile);
    }
    NotNegative(fcntl(descriptor, F_SETFL, O_APPEND)); // no longer without waiting: a terminal may be slow
}

int OpenedForAppending(const std::string& path)
{
    for (const int standard : {STDOUT_FILENO, STDERR_FILENO}) {
        if (IsPathOf(standard, path)) {
            return NotNegative(fcntl(standard, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
        }
    }
    const int opened =
        open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, readAndWriteForAll);
    if (opened == -1 && errno == ENXIO) { // of pipes that nobody reads, and of sockets
        throw std::runtime_error(noLogFile);
    }
    NotNegative(opened);
    try {
        RequireLogFile(opened);
    } catch (...) {
        close(opened);
        throw;
    }
    return opened;
}

} // namespace

LineSink::LineSink(std::string toPath) : path(std::move(toPath)), descriptor(STDERR_FILENO)
{
    Reopen();
}

LineSink::~LineSink()
{
    Close(descriptor);
}

bool LineSink::Reopen()
{
    if (path.empty()) {
        return true;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    try {
        Close(std::exchange(descriptor, OpenedForAppending(path)));
        isTorn = false;
        return true;
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "TMR_LOG_FILE: cannot open '%s': %s; logging to %s\n", path.c_str(), error.what(),
                     descriptor == STDERR_FILENO ? "standard error" : "the file that was open before");
        return false;
    }
}

void LineSink::sink_it_(const spdlog::details::log_msg& message)
{
    spdlog::memory_buf_t line;
    if (isTorn) {
        line.push_back('\n');
    }
    formatter_->format(message, line);
    for (std::size_t written = 0; written < line.size();) {
        const ssize_t more = write(descriptor, line.data() + written, line.size() - written);
        if (more > 0) {
            written += static_cast<std::size_t>(more);
        } else if (more == -1 && errno == EAGAIN) {
            pollfd room{descriptor, POLLOUT, 0};
            poll(&room, 1, waitForever);
        } else if (more == 0 || errno != EINTR) {
            const std::string reason = std::strerror(more == 0 ? ENOSPC : errno);
            TakeBack(written);
            throw std::runtime_error((path.empty() ? "standard error" : path) + " cannot be written: " + reason);
        }
    }
    isTorn = false;
}

// Cuts the file behind the last whole line, where it still ends with what was written of this one: another process may
// have appended a line of its own, which must stay.
void LineSink::TakeBack(std::size_t written)
{
    if (written == 0) {
        return;
    }
    const off_t end = lseek(descriptor, 0, SEEK_CUR);
    struct stat found {};
    const bool isAtEnd = (fcntl(descriptor, F_GETFL) & O_APPEND) != 0 && fstat(descriptor, &found) == 0 &&
                         S_ISREG(found.st_mode) && found.st_size == end;
    if (!isAtEnd || ftruncate(descriptor, end - static_cast<off_t>(written)) != 0) {
        isTorn = true;
    }
}
