#include "tools/acfilter/io/OutputFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <stdexcept>

namespace secm::acfilter {

namespace {

using secm::platform::Descriptor;

constexpr mode_t forOwner = S_IRUSR | S_IWUSR;
constexpr const char* accessControlList = "system.posix_acl_access";

// Keeps the hidden name within the system's limit for names, 255 bytes.
constexpr std::size_t longestShownName = 200;

constexpr const char* anotherRun = "another run of acfilter writes it; run again when that is done";

std::string PathOf(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

bool IsOpenForWriting(int descriptor)
{
    const int flags = fcntl(descriptor, F_GETFL);
    const bool isOpen = flags != -1 && (flags & O_ACCMODE) != O_RDONLY;
    errno = isOpen ? errno : EBADF;
    return isOpen;
}

// Whether the name in the folder leads to the open file.
bool HasName(int descriptor, int folder, const std::string& name)
{
    struct stat file {};
    struct stat named {};
    return fstat(descriptor, &file) == 0 && fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           file.st_dev == named.st_dev && file.st_ino == named.st_ino;
}

} // namespace

OutputFile::OutputFile(const std::optional<std::string>& outputPath) : OutputFile()
{
    if (outputPath) {
        place = FindOutputPlace(*outputPath);
        path = *outputPath;
        Begin();
    } else if (!IsOpenForWriting(STDOUT_FILENO)) { // otherwise only Finish would notice
        Refuse();
    }
}

void OutputFile::Begin()
{
    hiddenName = "." + place.name.substr(0, longestShownName) + ".acfilter-unfinished";
    RemoveAbandoned();
    Create();
    Lock();
    if (place.old && fchown(fileno(file), place.old->st_uid, place.old->st_gid) != 0) {
        Refuse(
            fmt::format("the new file cannot have the owner and group of the old one (user {}, group {}); run as that "
                        "user, or remove the old file",
                        place.old->st_uid, place.old->st_gid));
    }
}

void OutputFile::Create()
{
    const int folder = place.folder.Get();
    Descriptor unfinished(openat(folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, forOwner));
    if (!unfinished.IsOpen()) {
        unfinished = Descriptor(openat(folder, hiddenName.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, forOwner));
        isHidden = unfinished.IsOpen();
    }
    std::FILE* opened = unfinished.IsOpen() ? fdopen(unfinished.Get(), "w") : nullptr;
    if (opened == nullptr) {
        Refuse();
    }
    unfinished.Release();
    file = opened;
}

// The lock shows other runs that the file is being written, until it is closed.
void OutputFile::Lock()
{
    const bool isLocked = flock(fileno(file), LOCK_EX | LOCK_NB) == 0;
    if (!isLocked && errno != EWOULDBLOCK) {
        Refuse();
    }
    if (!isLocked || (isHidden && !HasName(fileno(file), place.folder.Get(), hiddenName))) {
        isHidden = false; // another run took it for an abandoned file
        Refuse(anotherRun);
    }
}

OutputFile::~OutputFile()
{
    if (isHidden) {
        unlinkat(place.folder.Get(), hiddenName.c_str(), 0);
    }
    if (file != stdout) {
        std::fclose(file);
    }
}

void OutputFile::Write(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), file) != text.size()) {
        Refuse();
    }
}

void OutputFile::Finish()
{
    if (std::fflush(file) != 0) {
        Refuse();
    }
    if (path.empty()) {
        return;
    }
    if (place.old) {
        KeepAccess();
    }
    if (fsync(fileno(file)) != 0) {
        Refuse();
    }
    if (place.old) {
        ReplaceOld();
    } else {
        PlaceNew();
    }
}

std::string OutputFile::ScratchFolder() const
{
    return place.folderPath;
}

// Removes a hidden file that a killed run left. Refuses to remove one that is being written, or that belongs to anybody
// but us and the old file's owner.
void OutputFile::RemoveAbandoned() const
{
    const int folder = place.folder.Get();
    struct stat found {};
    if (fstatat(folder, hiddenName.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno != ENOENT) {
            Refuse();
        }
        return;
    }
    const bool isOurs = found.st_uid == geteuid() || (place.old && found.st_uid == place.old->st_uid);
    if (!S_ISREG(found.st_mode) || !isOurs) {
        Refuse(fmt::format("'{}' beside it is not what acfilter leaves there when it is killed; see whose it is, and "
                           "remove it",
                           hiddenName));
    }
    // For reading, because the mode may be that of a file that nobody writes.
    const Descriptor abandoned(openat(folder, hiddenName.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!abandoned.IsOpen() || flock(abandoned.Get(), LOCK_EX | LOCK_NB) != 0) {
        Refuse(errno == EWOULDBLOCK ? anotherRun
                                    : fmt::format("'{}', which an earlier run left beside it, cannot be removed: {}",
                                                  hiddenName, std::strerror(errno)));
    }
    if (HasName(abandoned.Get(), folder, hiddenName) && unlinkat(folder, hiddenName.c_str(), 0) != 0) {
        Refuse();
    }
}

// Gives the new file the access control list and the mode of the old one.
void OutputFile::KeepAccess() const
{
    const std::string old = PathOf(place.folder.Get()) + "/" + place.name;
    std::string entries(XATTR_SIZE_MAX, '\0');
    const auto hasNone = [] { return errno == ENODATA || errno == EOPNOTSUPP; };
    const ssize_t length = lgetxattr(old.c_str(), accessControlList, entries.data(), entries.size());
    if (length < 0 && !hasNone()) {
        Refuse();
    }
    const int descriptor = fileno(file);
    if (length > 0 && fsetxattr(descriptor, accessControlList, entries.data(), static_cast<std::size_t>(length), 0)) {
        Refuse();
    }
    if (length <= 0 && fremovexattr(descriptor, accessControlList) != 0 && !hasNone()) { // the folder's default
        Refuse();
    }
    if (fchmod(descriptor, place.old->st_mode & ALLPERMS) != 0) {
        Refuse();
    }
}

bool OutputFile::LinkAs(const std::string& name) const
{
    return (isHidden ? linkat(place.folder.Get(), hiddenName.c_str(), place.folder.Get(), name.c_str(), 0)
                     : linkat(AT_FDCWD, PathOf(fileno(file)).c_str(), place.folder.Get(), name.c_str(),
                              AT_SYMLINK_FOLLOW)) == 0;
}

void OutputFile::PlaceNew()
{
    const int folder = place.folder.Get();
    bool isPlaced = LinkAs(place.name);
    if (!isPlaced && isHidden && errno != EEXIST) { // the file system has no hard links
        isPlaced = renameat2(folder, hiddenName.c_str(), folder, place.name.c_str(), RENAME_NOREPLACE) == 0;
        isHidden = !isPlaced;
    }
    if (!isPlaced && errno == EEXIST) {
        Refuse("there was no such file, but there is one now, which stays; see whose it is, and run again to "
               "replace it");
    }
    if (!isPlaced) {
        Refuse();
    }
}

void OutputFile::ReplaceOld()
{
    const int folder = place.folder.Get();
    if (!isHidden) {
        RemoveAbandoned();
        if (!LinkAs(hiddenName)) {
            Refuse();
        }
        isHidden = true;
    }
    if (renameat(folder, hiddenName.c_str(), folder, place.name.c_str()) != 0) {
        Refuse();
    }
    isHidden = false;
}

void OutputFile::Refuse() const
{
    Refuse(std::strerror(errno));
}

void OutputFile::Refuse(const std::string& why) const
{
    throw std::runtime_error(fmt::format("{} cannot be written: {}", path.empty() ? "standard output" : path, why));
}

} // namespace secm::acfilter
