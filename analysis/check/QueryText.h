// What the checks read in a text of an unknown query language: quotes, brackets and words, which most languages share.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace secm::analysis {

/// A quote or a bracket without its counterpart.
struct Unpaired {
    char mark;
    std::size_t position; ///< In bytes, from 0.
    bool isOpen;          ///< False: it closes what was not opened.
};

/// The first unpaired mark; none when all marks are paired in a language whose backslash escapes, or in one whose
/// backslash does not.
std::optional<Unpaired> FindUnpaired(std::string_view query);

/// `query` in which the bytes of quoted texts are replaced by bytes that belong to no word. Positions stay the same.
std::string OutsideQuotes(std::string_view query);

/// The same for quoted texts and for what is in brackets.
std::string OutsideBrackets(std::string_view query);

/// Whether the ASCII word `word` is in `text`, in any letter case.
bool HasWord(std::string_view text, std::string_view word);

/// Whether `query` looks as if every record matches it, such as 1 = 1, *:* or NOT 1 = 0.
bool MatchesEveryRecord(std::string_view query);

/// `text` without blanks, tabs and line ends around it.
std::string_view WithoutOuterBlanks(std::string_view text);

/// `text` with ASCII letters in lower case.
std::string LowerCase(std::string_view text);

} // namespace secm::analysis
