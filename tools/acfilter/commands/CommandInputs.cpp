#include "tools/acfilter/commands/CommandInputs.h"

#include "tools/acfilter/commands/Log.h"
#include "tools/acfilter/io/OutputPlace.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace secm::acfilter {
namespace {

namespace fs = std::filesystem;

bool IsConfigurationFile(const fs::path& path)
{
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return extension == ".toml";
}

bool IsSame(const struct stat& one, const struct stat& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool IsFolder(const platform::Descriptor& folder, const std::string& path)
{
    struct stat opened {};
    struct stat named {};
    return fstat(folder.Get(), &opened) == 0 && stat(path.c_str(), &named) == 0 && IsSame(opened, named);
}

// Whether `input`, which need not exist, is the file at `output`, through any links and mounts.
bool IsAt(const OutputPlace& output, const fs::path& input)
{
    struct stat found {};
    if (stat(input.c_str(), &found) == 0) {
        return output.old && IsSame(*output.old, found);
    }
    const bool leadsSomewhere = errno == ENOENT; // ELOOP: links that lead in a circle
    std::error_code none;
    if (leadsSomewhere && fs::is_symlink(input, none)) {
        return IsAt(output, input.parent_path() / fs::read_symlink(input, none));
    }
    return input.filename() == output.name && IsFolder(output.folder, fs::absolute(input, none).parent_path());
}

std::vector<std::string> FilesOf(const CFG_Candidate* configuration, const HostOptions& host)
{
    return configuration != nullptr ? configuration->Files() : std::vector<std::string>{host.configuration};
}

std::vector<fs::path> OpenFiles()
{
    std::vector<fs::path> files;
    for (const auto& descriptor : fs::directory_iterator("/proc/self/fd")) {
        std::error_code none;
        if (fs::is_regular_file(descriptor.path(), none)) {
            files.push_back(fs::read_symlink(descriptor.path(), none));
        }
    }
    return files;
}

} // namespace

void RequireNoInput(const std::string& output, const HostOptions& host, const CFG_Candidate* configuration,
                    const std::optional<std::string>& usersFrom)
{
    const OutputPlace place = FindOutputPlace(output);
    const auto require = [&](const fs::path& input, const std::string& what) {
        if (IsAt(place, input)) {
            throw std::runtime_error(
                fmt::format("--output '{}' is {} '{}'; name another file", output, what, input.string()));
        }
    };
    for (const std::string& file : FilesOf(configuration, host)) {
        require(file, "the configuration");
    }
    if (IsConfigurationFile(place.name) && IsFolder(place.folder, host.configuration)) {
        throw std::runtime_error(fmt::format("--output '{}' would be read as part of the configuration '{}'; name a "
                                             "file elsewhere, or not *.toml",
                                             output, host.configuration));
    }
    if (usersFrom && *usersFrom != "-") {
        require(*usersFrom, "the list of users");
    }
    if (const std::string log = LogPath(host); !log.empty()) {
        require(log, "the log");
    }
    for (const fs::path& file : OpenFiles()) {
        for (const char* beside : {"", "-wal", "-shm", "-journal"}) {
            require(file.string() + beside, "in use by this command, as");
        }
    }
}

} // namespace secm::acfilter
