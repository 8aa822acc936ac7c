// Texts for people, cut short where they are long, with how long they are. Control characters are shown.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace secm::acfilter {

inline constexpr std::size_t shownItems = 8;

std::string Quoted(const std::string& text);

/// A line of its own; what is behind the labels is aligned. Takes `content` as it is.
std::string LabelledLine(std::size_t indent, std::string_view label, const std::string& content);

/// The first of `count` items, between commas.
std::string ShortList(std::size_t count, const std::function<std::string(std::size_t)>& item, bool isFull);

std::string ShortText(const std::string& text, bool isFull);

} // namespace secm::acfilter
