// Changes that are tried and cannot have an effect.
#pragma once

#include "analysis/Export.h"
#include "analysis/definitions/Rules.h"
#include "analysis/trace/WhatIf.h"

#include <string>
#include <vector>

namespace secm::analysis {

/// A sentence for each change of `tried` that no field of `rules` reads: a permission or an attribute of another name.
/// It names the nearest name that a field reads. Any thread may call it.
SECM_ANALYSIS_EXPORT std::vector<std::string> ChangesWithoutEffect(const RepositoryRules& rules, const WhatIf& tried);

} // namespace secm::analysis
