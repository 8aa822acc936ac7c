#include "tools/acfilter/io/OutputPlace.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <utility>
#include <vector>

namespace secm::acfilter {
namespace {

namespace fs = std::filesystem;
using platform::Descriptor;

// The kernel follows as many.
constexpr int mostLinks = 40;

class PathResolution {
public:
    explicit PathResolution(const std::string& outputPath) : path(outputPath)
    {
        Enter(".");
        Push(path);
    }

    OutputPlace Find()
    {
        for (int links = 0; !pending.empty();) {
            place.name = std::move(pending.back());
            pending.pop_back();
            const bool isLast = pending.empty();
            struct stat found {};
            if (fstatat(place.folder.Get(), place.name.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
                if (errno == ENOENT && isLast) {
                    return std::move(place);
                }
                Refuse();
            }
            if (S_ISLNK(found.st_mode)) {
                RequireTrusted(found);
                if (++links > mostLinks) {
                    errno = ELOOP;
                    Refuse();
                }
                Push(TargetOfLink());
            } else if (!isLast) {
                Enter(place.name);
            } else if (S_ISREG(found.st_mode)) {
                RequireTrusted(found);
                place.old = found;
                return std::move(place);
            }
        }
        throw std::runtime_error(fmt::format(
            "--output '{}' is no file; name one, or leave the option out to write to standard output", path));
    }

private:
    void Push(const fs::path& further)
    {
        std::vector<std::string> parts(further.begin(), further.end());
        std::replace(parts.begin(), parts.end(), std::string(), std::string(".")); // after a final slash
        pending.insert(pending.end(), parts.rbegin(), parts.rend());
    }

    void Enter(const std::string& folder)
    {
        constexpr int forNames = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
        const int from = place.folder.IsOpen() ? place.folder.Get() : AT_FDCWD;
        Descriptor entered(openat(from, folder.c_str(), forNames));
        struct statfs system {};
        if (!entered.IsOpen() || fstatfs(entered.Get(), &system) != 0) {
            Refuse();
        }
        // A name in /proc/self/fd stands for an open file. Replacing the name would not write to that file.
        if (system.f_type == PROC_SUPER_MAGIC) {
            throw std::runtime_error(fmt::format(
                "--output '{}' leads into /proc; name a file, or leave the option out to write to standard output",
                path));
        }
        place.folder = std::move(entered);
        place.folderPath = (fs::path(place.folderPath) / folder).string();
    }

    // The rule of the kernel's fs.protected_symlinks and fs.protected_regular, which may be switched off.
    void RequireTrusted(const struct stat& found) const
    {
        struct stat folder {};
        if (fstat(place.folder.Get(), &folder) != 0) {
            Refuse();
        }
        const bool everybodyAddsFiles = (folder.st_mode & S_IWOTH) != 0;
        if (everybodyAddsFiles && found.st_uid != geteuid() && found.st_uid != folder.st_uid) {
            throw std::runtime_error(fmt::format("--output '{}': '{}' in '{}', where everybody may write, belongs to "
                                                 "somebody else (user {}); name a file in a folder of your own",
                                                 path, place.name, place.folderPath, found.st_uid));
        }
    }

    std::string TargetOfLink() const
    {
        std::string target(PATH_MAX, '\0');
        const ssize_t length = readlinkat(place.folder.Get(), place.name.c_str(), target.data(), target.size());
        if (length < 0) {
            Refuse();
        }
        target.resize(static_cast<std::size_t>(length));
        return target;
    }

    [[noreturn]] void Refuse() const
    {
        throw std::runtime_error(fmt::format("{} cannot be written: {}", path, std::strerror(errno)));
    }

    const std::string& path;
    OutputPlace place;
    std::vector<std::string> pending; // parts of the path that are not resolved yet, the next one last
};

} // namespace

OutputPlace FindOutputPlace(const std::string& path)
{
    return PathResolution(path).Find();
}

} // namespace secm::acfilter
