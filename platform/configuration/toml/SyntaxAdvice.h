// What an administrator most likely got wrong where the parser refuses a file.
#pragma once

#include "platform/configuration/toml/Nesting.h"

#include <optional>
#include <string>
#include <string_view>

namespace secm::platform {

struct SyntaxAdvice {
    std::optional<TextPosition> position; ///< Of the mistake, when the parser noticed it too late.
    std::string problem;                  ///< Empty: the parser's own words say it.
    std::string remedy;                   ///< Empty: there is none to give.
};

/// Advice on a file with `content`, which the parser refuses at `position` with the reason `description`.
SyntaxAdvice AdviceOn(std::string_view content, TextPosition position, std::string_view description);

} // namespace secm::platform
