#include "tools/acfilter/OutputPlace.h"

#include <fcntl.h>
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

namespace {

namespace fs = std::filesystem;

// As many as the system itself follows.
constexpr int mostLinks = 40;

class OutputWalk {
public:
    explicit OutputWalk(const std::string& outputPath) : path(outputPath)
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
        throw std::runtime_error("--output '" + path +
                                 "' is no file; name one, or leave the option out to write to standard output");
    }

private:
    void Push(const fs::path& further)
    {
        std::vector<std::string> parts(further.begin(), further.end());
        std::replace(parts.begin(), parts.end(), std::string(), std::string(".")); // behind a slash at the end
        pending.insert(pending.end(), parts.rbegin(), parts.rend());
    }

    void Enter(const std::string& folder)
    {
        constexpr int forNames = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
        const int from = place.folder.Get() == -1 ? AT_FDCWD : place.folder.Get();
        Descriptor entered(openat(from, folder.c_str(), forNames));
        struct statfs system {};
        if (entered.Get() == -1 || fstatfs(entered.Get(), &system) != 0) {
            Refuse();
        }
        // What is there leads to what is open already, which replacing it would not write to.
        if (system.f_type == PROC_SUPER_MAGIC) {
            throw std::runtime_error("--output '" + path +
                                     "' leads into /proc; name a file, or leave the option out to write to standard "
                                     "output");
        }
        place.folder = std::move(entered);
        place.folderPath = (fs::path(place.folderPath) / folder).string();
    }

    // Whatever the system's own setting (fs.protected_symlinks, fs.protected_regular) is.
    void RequireTrusted(const struct stat& found) const
    {
        struct stat folder {};
        if (fstat(place.folder.Get(), &folder) != 0) {
            Refuse();
        }
        constexpr mode_t everybodyAddsFiles = S_ISVTX | S_IWOTH;
        if ((folder.st_mode & everybodyAddsFiles) == everybodyAddsFiles && found.st_uid != geteuid() &&
            found.st_uid != folder.st_uid) {
            throw std::runtime_error("--output '" + path + "': '" + place.name + "' in '" + place.folderPath +
                                     "', where everybody may write, belongs to somebody else (user " +
                                     std::to_string(found.st_uid) + "); name a file in a folder of your own");
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

    [[noreturn]] void Refuse() const { throw std::runtime_error(path + " cannot be written: " + std::strerror(errno)); }

    const std::string& path;
    OutputPlace place;
    std::vector<std::string> pending; // the parts of the path that are still to go, the next one last
};

} // namespace

Descriptor::~Descriptor()
{
    if (descriptor != -1) {
        close(descriptor);
    }
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    std::swap(descriptor, other.descriptor);
    return *this;
}

int Descriptor::Release()
{
    return std::exchange(descriptor, -1);
}

OutputPlace FindOutputPlace(const std::string& path)
{
    return OutputWalk(path).Find();
}
