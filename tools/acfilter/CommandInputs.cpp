#include "tools/acfilter/CommandInputs.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
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

// The path without links. The file need not exist.
fs::path Canonical(const fs::path& path)
{
    std::error_code none;
    return fs::weakly_canonical(fs::absolute(path, none), none);
}

// Whether both paths lead to one file, which need not exist.
bool IsSameFile(const fs::path& one, const fs::path& other)
{
    std::error_code none;
    return fs::equivalent(one, other, none) || Canonical(one) == Canonical(other);
}

std::vector<fs::path> FilesOfConfiguration(const std::string& configuration)
{
    if (!fs::is_directory(configuration)) {
        return {configuration};
    }
    std::vector<fs::path> files;
    for (const auto& item : fs::directory_iterator(configuration)) {
        if (IsConfigurationFile(item.path())) {
            files.push_back(item.path());
        }
    }
    return files;
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

void RequireNoInput(const std::string& output, const HostOptions& host, const std::optional<std::string>& usersFrom)
{
    const auto require = [&](const fs::path& input, const std::string& what) {
        if (IsSameFile(output, input)) {
            throw std::runtime_error("--output '" + output + "' is " + what + " '" + input.string() +
                                     "'; name another file");
        }
    };
    for (const fs::path& file : FilesOfConfiguration(host.configuration)) {
        require(file, "the configuration");
    }
    std::error_code none;
    if (fs::is_directory(host.configuration) && IsConfigurationFile(Canonical(output)) &&
        fs::equivalent(Canonical(output).parent_path(), host.configuration, none)) {
        throw std::runtime_error("--output '" + output + "' would be read as part of the configuration '" +
                                 host.configuration + "'; name a file elsewhere, or not *.toml");
    }
    if (usersFrom && *usersFrom != "-") {
        require(*usersFrom, "the list of users");
    }
    if (const char* log = std::getenv("TMR_LOG_FILE"); log != nullptr && *log != '\0') {
        require(log, "the log");
    }
    for (const fs::path& file : OpenFiles()) {
        for (const char* beside : {"", "-wal", "-shm", "-journal"}) {
            require(file.string() + beside, "in use by this command, as");
        }
    }
}

} // namespace secm::acfilter
