// A file that is left out or read in part could restrict users less, so reading fails when a file cannot be read whole.
#include "platform/configuration/toml/ConfigurationFiles.h"

#include "platform/Descriptor.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/toml/Nesting.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>

namespace secm::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view suffix = ".toml";
constexpr std::string_view endLine = "# end of configuration";

[[noreturn]] void Refuse(const std::string& path, const std::string& why, TextPosition at = {})
{
    throw CFG_Error(fmt::format("{}:{}:{}: {}", path, at.line, at.column, why));
}

[[noreturn]] void RefuseAfterError(const std::string& path, const std::string& what)
{
    Refuse(path, fmt::format("{}: {}", what, std::strerror(errno)));
}

const char* KindOf(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFDIR:
        return "a folder";
    case S_IFIFO:
        return "a named pipe";
    case S_IFSOCK:
        return "a socket";
    default:
        return "a device";
    }
}

// Such as /dev/stdin behind `|`. Opening it never waits, because its other end is already open.
bool IsUnnamedPipe(const Descriptor& file)
{
    struct statfs fileSystem {};
    return fstatfs(file.Get(), &fileSystem) == 0 && fileSystem.f_type == PIPEFS_MAGIC;
}

// Opens a named pipe without waiting for its writer.
Descriptor Open(const std::string& path)
{
    Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (file.IsOpen()) {
        return file;
    }
    if (errno == ENXIO) {
        Refuse(path, "cannot be opened: it is a socket, or a device that is not there; name a regular file");
    }
    const int error = errno;
    std::error_code isNoLink;
    const fs::path target = fs::read_symlink(path, isNoLink);
    errno = error;
    RefuseAfterError(path, isNoLink ? "cannot be opened"
                                    : fmt::format("cannot be opened through the link to {}", target.string()));
}

std::string ReadToEnd(const Descriptor& file, const std::string& path)
{
    std::string content;
    std::array<char, 65536> piece{};
    for (;;) {
        const ssize_t count = read(file.Get(), piece.data(), piece.size());
        if (count == 0) {
            return content;
        }
        if (count > 0) {
            content.append(piece.data(), static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            RefuseAfterError(path, "cannot be read");
        }
    }
}

bool IsEndLineRequired()
{
    const char* set = std::getenv("CFG_REQUIRE_END");
    const std::string_view value = set != nullptr ? set : "";
    if (value != "1" && value != "0" && !value.empty()) {
        throw CFG_Error(fmt::format(
            "CFG_REQUIRE_END is '{}'; set it to 1 to require the line '{}' at the end of each file, or to 0", value,
            endLine));
    }
    return value == "1";
}

// Whether the last line is the end line. One line end may follow it.
bool HasEndLine(std::string_view content)
{
    if (content.ends_with('\n')) {
        content.remove_suffix(content.ends_with("\r\n") ? 2 : 1);
    }
    if (!content.ends_with(endLine)) {
        return false;
    }
    content.remove_suffix(endLine.size());
    return content.empty() || content.ends_with('\n');
}

std::string Lower(std::string text)
{
    const auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    std::transform(text.begin(), text.end(), text.begin(), lower);
    return text;
}

} // namespace

std::vector<std::string> FindFiles(const std::string& path)
{
    if (std::error_code ignored; !fs::is_directory(path, ignored)) {
        return {path};
    }
    std::vector<std::string> files;
    try {
        for (const auto& item : fs::directory_iterator(path)) {
            const std::string name = item.path().filename().string();
            if (name.starts_with('.') || !Lower(name).ends_with(suffix)) {
                continue;
            }
            if (!name.ends_with(suffix)) {
                Refuse(item.path().string(),
                       fmt::format("its name does not end in {0} in small letters; rename it to end in {0}, or move "
                                   "it away",
                                   suffix));
            }
            files.push_back(item.path().string());
        }
    } catch (const fs::filesystem_error& error) {
        Refuse(path, "the folder cannot be read: " + error.code().message());
    }
    if (files.empty()) {
        Refuse(path, "the folder holds no *.toml file");
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string ReadFile(const std::string& path)
{
    const Descriptor file = Open(path);
    struct stat status {};
    if (fstat(file.Get(), &status) != 0) {
        RefuseAfterError(path, "cannot be read");
    }
    const bool isPipe = IsUnnamedPipe(file);
    if (!S_ISREG(status.st_mode) && !isPipe) {
        Refuse(path, fmt::format("is {}, which cannot be read as a configuration; name a regular file, or move it out "
                                 "of the configuration's folder",
                                 KindOf(status.st_mode)));
    }
    if (fcntl(file.Get(), F_SETFL, 0) != 0) { // from now on, read() waits for the writer of a pipe
        RefuseAfterError(path, "cannot be read");
    }
    std::string content = ReadToEnd(file, path);
    // The beginning of one version with the end of another could be a valid file.
    struct stat after {};
    if (!isPipe && (fstat(file.Get(), &after) != 0 || after.st_size != status.st_size ||
                    after.st_mtim.tv_sec != status.st_mtim.tv_sec || after.st_mtim.tv_nsec != status.st_mtim.tv_nsec)) {
        Refuse(path, "the file changed while it was read; write a new file beside it and rename that");
    }
    if (isPipe && content.empty()) {
        // A pipe can be read only once. An empty configuration would restrict nobody.
        Refuse(path, "the pipe holds nothing, or was read before; name a regular file to read it more than once");
    }
    if (IsEndLineRequired() && !HasEndLine(content)) {
        Refuse(
            path,
            fmt::format("the file ends without the line '{}', which CFG_REQUIRE_END=1 requires; write the whole file "
                        "again, with that line as the last one",
                        endLine),
            PositionBehind(content));
    }
    return content;
}

} // namespace secm::platform
