// Repeats a request of a scenario with each fault that can happen on its way.
#pragma once

#include "tests/unit/ScenarioPlayer.h"

#include <string>

namespace secm::testing {

/// The player must have made `request` just before. Each of its calls to the outside throws once: the exception must
/// reach the caller, and the next request must be answered as before.
void ExpectFaultsToArrive(ScenarioPlayer& player, const std::string& request);

/// Each allocation of the request fails once: it must throw std::bad_alloc or answer as before.
void ExpectNoWrongAnswerWithoutMemory(ScenarioPlayer& player, const std::string& request);

} // namespace secm::testing
