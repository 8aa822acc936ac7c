// The changes that explain and diff try, for people and for programs.
#pragma once

#include "analysis/trace/WhatIf.h"
#include "tools/acfilter/render/Json.h"

#include <string>
#include <vector>

namespace secm::acfilter {

/// A sentence for each change. `withCounts`: also how many grants each revocation takes away.
std::vector<std::string> ChangesInWords(const analysis::WhatIf& tried, bool withCounts);

/// An array with an object for each change.
Json ChangesJson(const analysis::WhatIf& tried, bool withCounts);

} // namespace secm::acfilter
