// How users are asked for: the options that all commands share which ask for filters.
#pragma once

#include "tools/acfilter/commands/HostOptions.h"

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
}

class SECM_AccessControlInterface;

namespace secm::analysis {
class Tracer;
}

namespace secm::acfilter {

struct RequestOptions {
    std::string ipAddress;
    bool withoutLogin = false;
    std::string format = "text";
};

/// Adds the options to `command`; `options` must live until it has been parsed. `help` tells of the formats.
void AddRequestOptions(CLI::App& command, RequestOptions& options, const char* help,
                       const std::vector<std::string>& formats = {"text", "json"});

/// Throws std::runtime_error when the security database refuses, which `option` named.
void Connect(SECM_AccessControlInterface& accessControl, const HostOptions& options,
             const std::string& option = "--security");
void Connect(analysis::Tracer& tracer, const HostOptions& options, const std::string& option = "--security");

/// Runs `ask`; a failure names the user.
template <class Ask>
auto AskFor(const std::string& userName, Ask ask)
{
    try {
        return ask();
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("user '" + userName + "': " + error.what());
    } catch (const std::bad_alloc&) {
        throw std::runtime_error("user '" + userName + "': " + memoryRanOut);
    }
}

} // namespace secm::acfilter
