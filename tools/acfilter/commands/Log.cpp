#include "tools/acfilter/commands/Log.h"

#include "platform/logging/Tmr_LogFile.h"
#include "tools/acfilter/io/LogReopening.h"

#include <cstdlib>
#include <stdexcept>

namespace secm::acfilter {

namespace {

std::string Variable(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

std::string LogPath(const HostOptions& options)
{
    return options.logFile.value_or(Variable("TMR_LOG_FILE"));
}

void StartLog(const HostOptions& options, std::optional<int> defaultLevel)
{
    const bool environmentHasLevel = !Variable("TMR_LOG_LEVEL").empty();
    const std::optional<int> level = options.logLevel || environmentHasLevel ? options.logLevel : defaultLevel;

    void (Tmr_LogFile::*configure)(std::optional<int>, const std::optional<std::string>&) = &Tmr_LogFile::Configure;
    if (configure != nullptr) { // otherwise the log is a host's own, without it
        (TmrGLog.*configure)(level, options.logFile);
    } else if (options.logLevel || options.logFile) {
        throw std::runtime_error("the log in use takes no options; set TMR_LOG_LEVEL and TMR_LOG_FILE instead of "
                                 "--log-level and --log-file");
    }
    if (!LogPath(options).empty()) {
        ReopenLogOnHangUp();
    }
}

} // namespace secm::acfilter
