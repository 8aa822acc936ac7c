#include "tools/acfilter/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;

// As many as the system itself follows.
constexpr int mostLinks = 40;

// Of the one file that is being written; its owner keeps the text.
const char* volatile unfinished = nullptr;

void RemoveUnfinished(int signal)
{
    if (unfinished != nullptr) {
        unlink(unfinished);
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void RemoveUnfinishedOnSignals()
{
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        if (std::signal(signal, RemoveUnfinished) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

// What a file has that is made by any other program; one that is replaced keeps what it has.
mode_t ModeFor(const std::string& path)
{
    struct stat old {};
    if (stat(path.c_str(), &old) == 0) {
        return old.st_mode & 07777U;
    }
    const mode_t mask = umask(0);
    umask(mask);
    return 0666U & ~mask;
}

// Not a link, which would be replaced by the file instead of leading to it.
std::string PlaceOf(const std::string& path)
{
    std::error_code none;
    fs::path place = path;
    for (int links = 0; links < mostLinks && fs::is_symlink(place, none); ++links) {
        place = place.parent_path() / fs::read_symlink(place);
    }
    if (!place.has_filename() || (fs::exists(place, none) && !fs::is_regular_file(place, none))) {
        throw std::runtime_error("--output '" + path +
                                 "' is no file; name one, or leave the option out to write to standard output");
    }
    return place.string();
}

std::string TemporaryFolder()
{
    const char* folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

} // namespace

OutputFile::OutputFile(const std::optional<std::string>& path)
{
    if (!path) {
        // Closed, its number would go to the next file that is opened.
        if (fcntl(STDOUT_FILENO, F_GETFD) == -1) {
            Refuse();
        }
        return;
    }
    place = PlaceOf(*path);
    temporary = ScratchFolder() + "/." + fs::path(place).filename().string() + ".XXXXXX";
    const int descriptor = mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor == -1) {
        Refuse();
    }
    file = fdopen(descriptor, "w");
    unfinished = temporary.c_str();
    RemoveUnfinishedOnSignals();
}

OutputFile::~OutputFile()
{
    if (!temporary.empty()) {
        unfinished = nullptr;
        unlink(temporary.c_str());
    }
    if (!place.empty()) {
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
    if (place.empty()) {
        return;
    }
    if (fchmod(fileno(file), ModeFor(place)) != 0 || fsync(fileno(file)) != 0 ||
        std::rename(temporary.c_str(), place.c_str()) != 0) {
        Refuse();
    }
    unfinished = nullptr;
    temporary.clear();
}

std::string OutputFile::ScratchFolder() const
{
    const fs::path path = place;
    return path.has_parent_path() || place.empty() ? path.parent_path().string() : ".";
}

void OutputFile::Refuse() const
{
    throw std::runtime_error((place.empty() ? "standard output" : place) +
                             " cannot be written: " + std::strerror(errno));
}

Spool::Spool(const std::string& folder) : place(folder.empty() ? TemporaryFolder() : folder)
{
    std::string name = place + "/.acfilter.XXXXXX";
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor == -1) {
        Refuse("written");
    }
    file.open(name, std::ios::in | std::ios::out | std::ios::binary);
    unlink(name.c_str());
    close(descriptor);
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
