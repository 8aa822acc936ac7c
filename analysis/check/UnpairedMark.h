// The finding of a quote or a bracket without its counterpart.
#pragma once

#include "analysis/check/FindingSink.h"
#include "analysis/check/QueryText.h"

#include <string>
#include <string_view>

namespace secm::analysis {

/// `text` is the value of `key`, which is at `place`.
void ReportUnpaired(const Unpaired& unpaired, std::string_view text, const std::string& key, const CFG_Place& place,
                    FindingSink& sink);

} // namespace secm::analysis
