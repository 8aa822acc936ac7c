// The configuration of a benchmark.
#pragma once

#include <string>

namespace secm::bench {

/// A temporary file that CFG_REPOSITORY names while this object lives. One object at a time.
class ConfigurationFile {
public:
    explicit ConfigurationFile(const std::string& content);
    ~ConfigurationFile();
    ConfigurationFile(const ConfigurationFile&) = delete;
    ConfigurationFile& operator=(const ConfigurationFile&) = delete;

private:
    std::string path;
};

/// Makes `content` the configuration in force. Not from two threads at once.
void Configure(const std::string& content);

} // namespace secm::bench
