// The placeholders and tokens of condition templates, for the code that fills templates and the code that checks them.
#pragma once

#include "platform/security_manager/SECM_Constants.h"

#include <string>
#include <string_view>

namespace secm {

inline constexpr std::string_view valuesPlaceholder = "%values%";
inline constexpr std::string_view equalOperatorPlaceholder = "%equal_operator%";
/// A value, not a placeholder: it stands for an attribute of the user.
using platform::ownValue;
inline constexpr char tokenFrame = '$';

/// True when the token begins and ends with `tokenFrame`; other tokens are not replaced.
inline bool IsFramed(std::string_view token)
{
    return !token.empty() && token.front() == tokenFrame && token.back() == tokenFrame;
}

/// Replaces the first `pattern` in `text` with `replacement`. False: `text` has no `pattern` and is unchanged. An empty
/// pattern matches at the start.
inline bool ReplaceFirst(std::string& text, std::string_view pattern, std::string_view replacement)
{
    const std::size_t position = text.find(pattern);
    if (position == std::string::npos) {
        return false;
    }
    text.replace(position, pattern.size(), replacement);
    return true;
}

/// The attribute's name: the token without its first and last character, empty for a token of one character.
inline std::string AttributeName(std::string_view token)
{
    return std::string(token.size() > 1 ? token.substr(1, token.size() - 2) : "");
}

} // namespace secm
