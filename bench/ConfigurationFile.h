// A configuration of a benchmark's own.
#pragma once

#include <string>

/// The file that CFG_REPOSITORY names, while this lives; one at a time.
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
