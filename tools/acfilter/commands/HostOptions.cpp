#include "tools/acfilter/commands/HostOptions.h"

#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"
#include "tools/acfilter/cli/TextOption.h"
#include "tools/acfilter/io/LogReopening.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>

namespace secm::acfilter {

void AddHostOptions(CLI::App& command, HostOptions& options, HostNeeds needs)
{
    AddOption(command, "-c,--config", options.configuration, "The configuration: a TOML file, or a folder of them")
        ->envname("CFG_REPOSITORY")
        ->type_name("PATH")
        ->required();
    AddOption(command, "-s,--security", options.securityDatabase,
              "The security database: sqlite3://db=FILE or postgresql://host=... dbname=...")
        ->envname("SECM_CONNECTION")
        ->type_name("CONNECT")
        ->required(needs.securityDatabase);
    AddOption(command, "-r,--repository", options.repository, "The repository of the configuration to ask")
        ->type_name("NAME")
        ->required(needs.repository);
    AddOption(command, "--timeout", options.timeoutSeconds, "Limit for connecting and for each statement, in seconds")
        ->type_name("SECONDS");
    AddOption(command, "--log-level", options.logLevel, "Log this level and below: 3 failures ... 7 traces")
        ->type_name("N");
    AddOption(command, "--log-file", options.logFile, "Append the log to this file; else to standard error")
        ->type_name("PATH");
}

void ApplyHostOptions(const HostOptions& options)
{
    constexpr int replaceExisting = 1;
    setenv("CFG_REPOSITORY", options.configuration.c_str(), replaceExisting);
    if (options.logLevel) {
        setenv("TMR_LOG_LEVEL", std::to_string(*options.logLevel).c_str(), replaceExisting);
    }
    if (options.logFile) {
        setenv("TMR_LOG_FILE", options.logFile->c_str(), replaceExisting);
    }

    ReopenLogOnHangUp();
    try {
        if (CFG_Factory::GetRepositoryServices() == nullptr) {
            throw std::runtime_error("no configuration: the path given to --config is empty");
        }
    } catch (const std::bad_alloc&) {
        throw std::runtime_error(options.configuration + ": cannot be read: " + memoryRanOut);
    }
}

void RequireRepository(const HostOptions& options)
{
    const std::unique_ptr<CFG_RepositoryServices> repository(CFG_Factory::GetRepositoryServices()->GetSubTree(
        RWCString(configuration_paths::repositories + options.repository)));
    if (!repository) {
        throw std::runtime_error(options.configuration + ": there is no repository '" + options.repository +
                                 "'; correct --repository, or add its table under [zarvona.system.applications."
                                 "securitymanager.unified_access_control.repositories]");
    }
}

} // namespace secm::acfilter
