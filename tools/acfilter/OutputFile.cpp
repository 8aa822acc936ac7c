#include "tools/acfilter/OutputFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

constexpr mode_t forOwner = S_IRUSR | S_IWUSR;
constexpr const char* accessControlList = "system.posix_acl_access";

// The hidden name of the longest name is no longer than the system lets names be.
constexpr std::size_t longestShownName = 200;

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

// Whether the open file has the name in the folder.
bool HasName(int descriptor, int folder, const std::string& name)
{
    struct stat file {};
    struct stat named {};
    return fstat(descriptor, &file) == 0 && fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           file.st_dev == named.st_dev && file.st_ino == named.st_ino;
}

std::string TemporaryFolder()
{
    const char* folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

// Open for reading and writing, and without a name; -1 when there can be none.
Descriptor UnnamedFile(const std::string& folder)
{
    Descriptor unnamed(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, forOwner));
    if (unnamed.Get() == -1) {
        std::string name = folder + "/.acfilter.XXXXXX";
        unnamed = Descriptor(mkostemp(name.data(), O_CLOEXEC));
        if (unnamed.Get() != -1) {
            unlink(name.c_str());
        }
    }
    return unnamed;
}

} // namespace

OutputFile::OutputFile(const std::optional<std::string>& outputPath) : OutputFile()
{
    if (outputPath) {
        place = FindOutputPlace(*outputPath);
        path = *outputPath;
        Begin();
    } else if (!IsOpenForWriting(STDOUT_FILENO)) { // which would show only at the end
        Refuse();
    }
}

void OutputFile::Begin()
{
    hiddenName = "." + place.name.substr(0, longestShownName) + ".acfilter-unfinished";
    RemoveAbandoned();
    const int folder = place.folder.Get();
    Descriptor unfinished(openat(folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, forOwner));
    if (unfinished.Get() == -1) {
        unfinished = Descriptor(openat(folder, hiddenName.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, forOwner));
        isHidden = unfinished.Get() != -1;
    }
    std::FILE* opened = unfinished.Get() != -1 ? fdopen(unfinished.Get(), "w") : nullptr;
    if (opened == nullptr) {
        Refuse();
    }
    file = opened;
    // Until it is closed, the lock tells a file that is being written from one that was left.
    const bool isLocked = flock(unfinished.Release(), LOCK_EX | LOCK_NB) == 0;
    if (!isLocked && errno != EWOULDBLOCK) {
        Refuse();
    }
    if (!isLocked || (isHidden && !HasName(fileno(file), folder, hiddenName))) {
        isHidden = false; // another run took it for one that was left
        Refuse("another run of acfilter writes it; run again when that is done");
    }
    if (place.old && fchown(fileno(file), place.old->st_uid, place.old->st_gid) != 0) {
        Refuse("the new file cannot have the owner and group of the old one (user " +
               std::to_string(place.old->st_uid) + ", group " + std::to_string(place.old->st_gid) +
               "); run as that user, or remove the old file");
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
    PutInPlace();
}

std::string OutputFile::ScratchFolder() const
{
    return place.folderPath;
}

// A file of the hidden name that nobody writes, and that cannot be anybody's but ours or the old file's owner's.
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
        Refuse("'" + hiddenName +
               "' beside it is not what acfilter leaves there when it is killed; see whose it is, "
               "and remove it");
    }
    const Descriptor abandoned(openat(folder, hiddenName.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (abandoned.Get() == -1 || flock(abandoned.Get(), LOCK_EX | LOCK_NB) != 0) {
        Refuse(errno == EWOULDBLOCK ? "another run of acfilter writes it; run again when that is done"
                                    : "'" + hiddenName + "', which a run before left beside it, cannot be removed: " +
                                          std::strerror(errno));
    }
    if (HasName(abandoned.Get(), folder, hiddenName) && unlinkat(folder, hiddenName.c_str(), 0) != 0) {
        Refuse();
    }
}

// Nobody may read the new file who could not read the old one.
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
    if (length <= 0 && fremovexattr(descriptor, accessControlList) != 0 && !hasNone()) { // that the folder gave it
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

void OutputFile::PutInPlace()
{
    const int folder = place.folder.Get();
    if (!place.old) {
        bool isThere = LinkAs(place.name);
        if (!isThere && isHidden && errno != EEXIST) { // there are no hard links
            isThere = renameat2(folder, hiddenName.c_str(), folder, place.name.c_str(), RENAME_NOREPLACE) == 0;
            isHidden = !isThere;
        }
        if (!isThere && errno == EEXIST) {
            Refuse("there was no such file, but there is one now, which stays; see whose it is, and run again to "
                   "replace it");
        }
        if (!isThere) {
            Refuse();
        }
        return;
    }
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
    throw std::runtime_error((path.empty() ? "standard output" : path) + " cannot be written: " + why);
}

Spool::Spool(const std::string& folder) : place(folder.empty() ? TemporaryFolder() : folder)
{
    const Descriptor unnamed = UnnamedFile(place);
    if (unnamed.Get() == -1) {
        Refuse("written");
    }
    file.open(PathOf(unnamed.Get()), std::ios::in | std::ios::out | std::ios::binary);
}

void Spool::Write(std::string_view lines)
{
    if (!file.write(lines.data(), static_cast<std::streamsize>(lines.size()))) {
        Refuse("written");
    }
}

void Spool::ForEachLine(const std::function<void(const std::string&)>& handle)
{
    if (!file.seekg(0)) { // which writes out what is left
        Refuse("written");
    }
    for (std::string line; std::getline(file, line);) {
        handle(line);
    }
    if (file.bad()) {
        Refuse("read");
    }
}

void Spool::Refuse(const char* what) const
{
    throw std::runtime_error("a temporary file in '" + place + "' cannot be " + what + ": " + std::strerror(errno) +
                             "; make room there, or set TMPDIR to another folder");
}
