// A finding: what is wrong with a configuration or with a grant, what that does to users, and the remedy.
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
    /// Of the wrong name, or of the table that lacks a name. Without a file: the finding is about the security
    /// connection.
    CFG_Place place;
    std::string code; ///< "AC" and three digits.
    Severity severity = Severity::warning;
    std::string repository; ///< Empty when it concerns several.
    std::string problem;    ///< What is wrong.
    std::string effect;     ///< What happens to which users.
    std::string remedy;     ///< What to do.

    auto operator<=>(const Finding&) const = default;
};

} // namespace secm::analysis
