// Grants as administrators write them in options and in suites.
#pragma once

#include "analysis/Export.h"
#include "platform/security_manager/PermissionBase.h"

#include <optional>
#include <string>

namespace secm::analysis {

/// NAME:VALUE[:RESOURCE], where the value is a whole number from 0 to 4294967295 and without a resource the permission
/// is held outright. No value when `text` has another form.
SECM_ANALYSIS_EXPORT std::optional<PermissionBase> GrantFrom(const std::string& text);

} // namespace secm::analysis
