// Parses the values of the options --attribute, --grant and --revoke.
#pragma once

#include "analysis/trace/WhatIf.h"
#include "tools/acfilter/commands/CommonOptions.h"

#include <optional>
#include <string>
#include <utility>

namespace secm::acfilter {

/// NAME=VALUE, where the value may be empty. No value when `text` has another form.
std::optional<std::pair<std::string, std::string>> AttributeFrom(const std::string& text);

/// The changes of the options. Throws UsageError for a text of another form.
analysis::WhatIf WhatIfFrom(const ChangeOptions& options);

} // namespace secm::acfilter
