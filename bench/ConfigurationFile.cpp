#include "bench/ConfigurationFile.h"

#include "platform/configuration/CFG_RepositoryServices.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace secm::bench {

ConfigurationFile::ConfigurationFile(const std::string& content)
    : path(std::filesystem::temp_directory_path() / ("filter_bench-" + std::to_string(getpid()) + ".toml"))
{
    if (!(std::ofstream(path, std::ios::binary) << content).flush()) {
        throw std::runtime_error(path + " cannot be written; set TMPDIR to a folder with room");
    }
    setenv("CFG_REPOSITORY", path.c_str(), 1);
}

ConfigurationFile::~ConfigurationFile()
{
    unsetenv("CFG_REPOSITORY");
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

void Configure(const std::string& content)
{
    const ConfigurationFile file(content);
    CFG_Factory::Reload();
}

} // namespace secm::bench
