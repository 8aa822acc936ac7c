// Plays the lines of a scenario: sets what lies outside the module, and makes requests to a manager.
#pragma once

#include "tests/unit/TracedRequests.h"
#include "tests/unit/WatchedManager.h"

#include <memory>
#include <string>

namespace secm::testing {

class ScenarioPlayer {
public:
    /// Resets what lies outside. The users u and v are alike.
    ScenarioPlayer();

    /// Does what `line` says. A command leaves its answer behind.
    void Do(const std::string& line);

    std::string answer;
    std::unique_ptr<WatchedManager> manager; ///< Null until the command "create".
    TracedRequests traced;
};

} // namespace secm::testing
