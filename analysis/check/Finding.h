// What is wrong with a configuration or with what is granted, what it does to users, and what to do.
#pragma once

#include "platform/configuration/CFG_Listing.h"

#include <compare>
#include <string>

namespace secm::analysis {

/// An error: users may see too much, or a filter will be broken. A warning: something has no effect, or probably not
/// the one that was meant.
enum class Severity { error, warning };

/// Owns its texts. Findings sort by place, then by code.
struct Finding {
    CFG_Place place;  ///< Of the wrong name, or of the table that lacks one. No file: the security connection is meant.
    std::string code; ///< "AC" and three digits.
    Severity severity;
    std::string repository; ///< Empty when it concerns several.
    std::string problem;
    std::string effect; ///< What will happen to which users.
    std::string remedy;

    auto operator<=>(const Finding&) const = default;
};

} // namespace secm::analysis
