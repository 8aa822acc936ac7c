#include "analysis/check/MisspeltName.h"

#include "analysis/check/Spelling.h"
#include "analysis/check/TextAppearance.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace secm::analysis {

namespace {

constexpr std::string_view separators = "._-/: ";

std::string Plain(const std::string& name)
{
    std::string plain = Appearance(name);
    std::erase_if(plain, [](char character) { return character == ' ' || character == '$'; });
    return plain;
}

std::string WithoutDigits(std::string text)
{
    std::erase_if(text, [](char character) { return character >= '0' && character <= '9'; });
    return text;
}

// Removes the words that both begin with, and those that both end with.
void KeepDifferentWords(std::string_view& one, std::string_view& other)
{
    const auto prefix = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    const auto same = static_cast<std::size_t>(prefix.first - one.begin());
    const std::size_t start = one.substr(0, same).find_last_of(separators) + 1; // 0 when there is none
    one.remove_prefix(start);
    other.remove_prefix(start);
    const auto suffix = std::mismatch(one.rbegin(), one.rend(), other.rbegin(), other.rend());
    const auto sameEnd = static_cast<std::size_t>(suffix.first - one.rbegin());
    const std::size_t end = one.find_first_of(separators, one.size() - sameEnd);
    if (end != std::string_view::npos) {
        other.remove_suffix(one.size() - end);
        one.remove_suffix(one.size() - end);
    }
}

} // namespace

bool IsMisspeltName(const std::string& name, const std::string& right)
{
    constexpr std::size_t longEnoughForOne = 4;
    constexpr std::size_t longEnoughForTwo = 8;
    const std::string one = Plain(name);
    const std::string other = Plain(right);
    if (one == other) {
        return name != right;
    }
    if (WithoutDigits(one) == WithoutDigits(other)) {
        return false;
    }
    std::string_view wordOfOne = one;
    std::string_view wordOfOther = other;
    KeepDifferentWords(wordOfOne, wordOfOther);
    const std::size_t length = std::min(wordOfOne.size(), wordOfOther.size());
    const std::size_t longest = std::max(wordOfOne.size(), wordOfOther.size());
    if (length < longEnoughForOne || longest - length > 2) {
        return false;
    }
    return Distance(wordOfOne, wordOfOther) <= (length < longEnoughForTwo ? 1U : 2U);
}

} // namespace secm::analysis
