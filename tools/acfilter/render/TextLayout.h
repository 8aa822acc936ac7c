// Texts for people. Long ones are cut short and say how long they are; control characters are shown.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace secm::acfilter {

inline constexpr const char* noRestriction = "no restriction: every record is visible";

inline constexpr std::size_t shownItems = 8;

/// Between apostrophes.
std::string Quoted(const std::string& text);

/// What stands for an empty filter, in parentheses.
std::string NoRestriction();

/// A line of its own; the contents of several are aligned. `label` is printable, and `content` is taken as it is.
std::string LabelledLine(std::size_t indent, std::string_view label, const std::string& content);

/// The first of `count` items, separated by commas; `isFull`: all of them.
std::string ShortList(std::size_t count, const std::function<std::string(std::size_t)>& item, bool isFull);

/// The beginning of `text`; `isFull`: all of it.
std::string ShortText(const std::string& text, bool isFull);

} // namespace secm::acfilter
