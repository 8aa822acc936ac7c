// Texts for people, cut short where they are long, with how long they are. Control characters are shown.
#pragma once

#include <functional>
#include <string>

inline constexpr std::size_t shownItems = 8;

std::string Quoted(const std::string& text);

/// The first of `count` items, between commas.
std::string ShortList(std::size_t count, const std::function<std::string(std::size_t)>& item, bool isFull);

std::string ShortText(const std::string& text, bool isFull);
