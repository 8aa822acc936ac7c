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

namespace secm::platform {
namespace {

constexpr mode_t readAndWriteForAll = 0666; // the process's mask is applied to it
constexpr int waitForever = -1;
constexpr const char* noLogFile = "it is neither a file nor a terminal; name a file";

int NotNegative(int result)
{
    if (result < 0) {
        throw std::runtime_error(std::strerror(errno));
    }
    return result;
}

// Whether `path` leads to what `descriptor` writes to already, as /dev/stdout and /dev/stderr do. Opened again, a pipe
// or a socket would be refused, and a file would be written from its beginning.
bool IsPathOf(int descriptor, const std::string& path)
{
    struct stat named {};
    struct stat open {};
    return stat(path.c_str(), &named) == 0 && fstat(descriptor, &open) == 0 && named.st_dev == open.st_dev &&
           named.st_ino == open.st_ino;
}

// Refuses pipes: one that nobody reads would stop every request.
void RequireLogFile(const Descriptor& opened)
{
    struct stat found {};
    NotNegative(fstat(opened.Get(), &found));
    if (!S_ISREG(found.st_mode) && !S_ISCHR(found.st_mode)) {
        throw std::runtime_error(noLogFile);
    }
}

Descriptor OpenForAppending(const std::string& path)
{
    for (const int standard : {STDOUT_FILENO, STDERR_FILENO}) {
        if (IsPathOf(standard, path)) {
            return Descriptor(NotNegative(fcntl(standard, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)));
        }
    }
    Descriptor opened(
        open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, readAndWriteForAll));
    if (!opened.IsOpen() && errno == ENXIO) { // a pipe that nobody reads, or a socket
        throw std::runtime_error(noLogFile);
    }
    NotNegative(opened.Get());
    RequireLogFile(opened);
    NotNegative(fcntl(opened.Get(), F_SETFL, O_APPEND)); // from now on, write() waits for a slow terminal
    return opened;
}

} // namespace

LineSink::LineSink(std::string toPath) : path(std::move(toPath))
{
    Reopen();
}

bool LineSink::Reopen()
{
    if (path.empty()) {
        return true;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    try {
        file = OpenForAppending(path);
        isTorn = false;
        return true;
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "TMR_LOG_FILE: cannot open '%s': %s; logging to %s\n", path.c_str(), error.what(),
                     file.IsOpen() ? "the file that was open before" : "standard error");
        return false;
    }
}

int LineSink::Target() const
{
    return file.IsOpen() ? file.Get() : STDERR_FILENO;
}

void LineSink::sink_it_(const spdlog::details::log_msg& message)
{
    spdlog::memory_buf_t line;
    if (isTorn) {
        line.push_back('\n');
    }
    formatter_->format(message, line);
    for (std::size_t written = 0; written < line.size();) {
        const ssize_t more = write(Target(), line.data() + written, line.size() - written);
        if (more > 0) {
            written += static_cast<std::size_t>(more);
        } else if (more == -1 && errno == EAGAIN) {
            pollfd room{Target(), POLLOUT, 0};
            poll(&room, 1, waitForever);
        } else if (more == 0 || errno != EINTR) {
            const std::string reason = std::strerror(more == 0 ? ENOSPC : errno);
            TakeBack(written);
            throw std::runtime_error((path.empty() ? "standard error" : path) + " cannot be written: " + reason);
        }
    }
    isTorn = false;
}

// Cuts off the `written` bytes of an unfinished line. Does not cut when another process has appended after them: its
// line must stay.
void LineSink::TakeBack(std::size_t written)
{
    if (written == 0) {
        return;
    }
    const off_t end = lseek(Target(), 0, SEEK_CUR);
    struct stat found {};
    const bool isAtEnd = (fcntl(Target(), F_GETFL) & O_APPEND) != 0 && fstat(Target(), &found) == 0 &&
                         S_ISREG(found.st_mode) && found.st_size == end;
    if (!isAtEnd || ftruncate(Target(), end - static_cast<off_t>(written)) != 0) {
        isTorn = true;
    }
}

} // namespace secm::platform
