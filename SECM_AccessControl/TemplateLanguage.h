// What stands for something else in a condition's template, for those who fill templates in and those who check them.
#pragma once

#include <string>
#include <string_view>

inline constexpr std::string_view valuesPlaceholder = "%values%";
inline constexpr std::string_view equalOperatorPlaceholder = "%equal_operator%";
/// No placeholder, but the value that stands for the user's own.
inline constexpr std::string_view ownValue = "%my%";
inline constexpr char tokenFrame = '$';

/// Whether a token is one that is replaced.
inline bool IsFramed(std::string_view token)
{
    return !token.empty() && token.front() == tokenFrame && token.back() == tokenFrame;
}

/// Replaces the first `pattern` in `text` by `replacement`. False: there is none, and `text` is unchanged. An empty
/// pattern is found at the start.
inline bool ReplaceFirst(std::string& text, std::string_view pattern, std::string_view replacement)
{
    const std::size_t position = text.find(pattern);
    if (position == std::string::npos) {
        return false;
    }
    text.replace(position, pattern.size(), replacement);
    return true;
}

/// A token without its first and last character: the name of an attribute. Of a single character nothing is left.
inline std::string AttributeName(std::string_view token)
{
    return std::string(token.size() > 1 ? token.substr(1, token.size() - 2) : "");
}
