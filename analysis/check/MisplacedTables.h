// What a table was meant to be, by its keys.
#pragma once

#include "platform/configuration/CFG_Listing.h"

#include <vector>

namespace secm::analysis {

/// Whether the keys among `entries` are those of a repository's settings. One key with a common name is not enough.
bool HoldsSettings(const std::vector<CFG_Entry>& entries);

/// The same for the definition of a field.
bool HoldsDefinition(const std::vector<CFG_Entry>& entries);

} // namespace secm::analysis
