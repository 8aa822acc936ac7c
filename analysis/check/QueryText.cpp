#include "analysis/check/QueryText.h"

#include "analysis/check/WordCharacter.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <utility>
#include <vector>

namespace secm::analysis {

namespace {

constexpr char hidden = '\x7f'; // belongs to no word
constexpr std::string_view quoteMarks = "'\"`";

// A text read as one of two families of languages.
struct Reading {
    std::string outsideQuotes;
    std::string outsideBrackets;
    std::optional<Unpaired> unpaired;
};

bool IsLetter(std::string_view text, std::size_t at)
{
    return at < text.size() && std::isalpha(static_cast<unsigned char>(text[at])) != 0;
}

// `escapes`: a backslash escapes the next character, and an apostrophe between two letters is no quote.
Reading Read(std::string_view query, bool escapes)
{
    Reading reading{std::string(query), std::string(query), {}};
    std::optional<std::size_t> quote; // where the open one is
    std::vector<std::size_t> brackets;
    const auto hide = [&](std::size_t at, bool isQuoted) {
        reading.outsideBrackets[at] = hidden;
        if (isQuoted) {
            reading.outsideQuotes[at] = hidden;
        }
    };
    for (std::size_t at = 0; at < query.size(); ++at) {
        const char byte = query[at];
        const bool isApostrophe =
            escapes && byte == '\'' && at > 0 && IsLetter(query, at - 1) && IsLetter(query, at + 1);
        if (escapes && byte == '\\' && at + 1 < query.size()) {
            hide(at, true);
            hide(++at, true);
        } else if (quote) {
            hide(at, true);
            if (byte == query[*quote]) {
                quote.reset();
            }
        } else if (quoteMarks.find(byte) != std::string_view::npos && !isApostrophe) {
            hide(at, true);
            quote = at;
        } else if (std::string_view("([{").find(byte) != std::string_view::npos) {
            hide(at, false);
            brackets.push_back(at);
        } else if (std::string_view(")]}").find(byte) != std::string_view::npos) {
            hide(at, false);
            // Ranges such as [1 TO 5} mix brackets and braces.
            const bool isPaired = !brackets.empty() && (query[brackets.back()] == '(') == (byte == ')');
            if (!isPaired && !reading.unpaired) {
                reading.unpaired = {byte, at, false};
            }
            if (!brackets.empty()) {
                brackets.pop_back();
            }
        } else if (!brackets.empty()) {
            hide(at, false);
        }
    }
    if (quote) {
        reading.unpaired = {query[*quote], *quote, true};
    } else if (!brackets.empty() && !reading.unpaired) {
        reading.unpaired = {query[brackets.back()], brackets.back(), true};
    }
    return reading;
}

// As the family of languages in which all marks are paired.
Reading Read(std::string_view query)
{
    Reading plain = Read(query, false);
    if (plain.unpaired) {
        if (Reading escaping = Read(query, true); !escaping.unpaired) {
            return escaping;
        }
    }
    return plain;
}

// The parts of `query` between the words `word` outside of quotes and brackets.
std::vector<std::string_view> SplitAt(std::string_view query, std::string_view word)
{
    const std::string outside = LowerCase(OutsideBrackets(query));
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    for (std::size_t at = 0; (at = outside.find(word, at)) != std::string::npos; at += word.size()) {
        const std::size_t end = at + word.size();
        if ((at == 0 || !IsWordCharacter(outside[at - 1])) &&
            (end == outside.size() || !IsWordCharacter(outside[end]))) {
            parts.push_back(query.substr(start, at - start));
            start = end;
        }
    }
    parts.push_back(query.substr(start));
    return parts;
}

bool IsAlways(std::string_view query, bool outcome);

bool IsName(std::string_view text)
{
    return !text.empty() && std::isdigit(static_cast<unsigned char>(text.front())) == 0 &&
           std::all_of(text.begin(), text.end(), [](char byte) { return IsWordCharacter(byte) || byte == '.'; });
}

// A number, or one text between single quotes.
bool IsLiteral(std::string_view text)
{
    const bool isText = text.size() > 1 && text.starts_with('\'') && text.find('\'', 1) == text.size() - 1;
    return isText || (!text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos);
}

bool IsNameInQuotes(std::string_view text)
{
    return text.size() > 2 && text.starts_with('"') && text.find('"', 1) == text.size() - 1;
}

// A comparison of two constants, or of a name with itself.
bool IsConstantComparison(std::string_view text, bool outcome)
{
    const std::string outside = OutsideQuotes(text);
    std::size_t at = outside.find_first_of("=<>!");
    std::size_t end = std::min(outside.find_first_not_of("=<>!", at), outside.size());
    for (const std::string_view word : {" like ", " is "}) {
        if (at == std::string::npos && outside.find(word) != std::string::npos) {
            at = outside.find(word);
            end = at + word.size();
        }
    }
    if (at == std::string::npos) {
        return false;
    }
    const std::string_view left = WithoutOuterBlanks(text.substr(0, at));
    const std::string_view sign = WithoutOuterBlanks(text.substr(at, end - at));
    const std::string_view right = WithoutOuterBlanks(text.substr(end));
    const bool isOfLiterals = IsLiteral(left) && IsLiteral(right);
    const bool isEqual = left == right;
    if (!isOfLiterals && (!isEqual || !(IsName(left) || IsNameInQuotes(left)))) {
        return sign == "like" && IsName(left) && (right == "'%'" || right == "'%%'") && outcome;
    }
    if (sign == "<>" || sign == "!=") {
        return isEqual != outcome;
    }
    if (sign.front() != '<' && sign.front() != '>') {
        return isEqual == outcome;
    }
    const bool isLess = left.size() != right.size() ? left.size() < right.size() : left < right;
    return (isEqual ? sign.size() == 2 : isLess == (sign.front() == '<')) == outcome;
}

bool IsConstant(std::string_view text, bool outcome)
{
    std::string dense(text);
    std::erase(dense, ' ');
    const auto isOneOf = [&](std::initializer_list<std::string_view> texts) {
        return std::find(texts.begin(), texts.end(), dense) != texts.end();
    };
    constexpr std::string_view isNotNull = " is not null";
    const bool isAnyValue =
        (dense.ends_with(":*") || dense.ends_with("=*")) && IsName(std::string_view(dense).substr(0, dense.size() - 2));
    const bool isNotNullTest =
        text.ends_with(isNotNull) && IsName(WithoutOuterBlanks(text.substr(0, text.size() - isNotNull.size())));
    const bool isConstant =
        outcome ? isOneOf({"true", "1", "*", "*:*", "{}", "{\"match_all\":{}}"}) || isAnyValue || isNotNullTest
                : isOneOf({"false", "0", "{\"match_none\":{}}"});
    return isConstant || IsConstantComparison(text, outcome);
}

bool IsAlwaysAsPart(std::string_view query, bool outcome)
{
    const std::string text = LowerCase(WithoutOuterBlanks(query));
    if (text.starts_with('(') && text.ends_with(')') && OutsideBrackets(text) == std::string(text.size(), hidden)) {
        return IsAlways(std::string_view(text).substr(1, text.size() - 2), outcome);
    }
    const std::size_t negation = text.starts_with("not") && text.size() > 3 && !IsWordCharacter(text[3]) ? 3
                                 : text.starts_with('!') || text.starts_with("-*")                       ? 1
                                                                                                         : 0;
    if (negation != 0) {
        return IsAlways(std::string_view(text).substr(negation), !outcome);
    }
    return IsConstant(text, outcome);
}

bool IsAlways(std::string_view query, bool outcome)
{
    for (const auto& [word, whenAny] : {std::pair("or", true), std::pair("and", false)}) {
        if (const auto parts = SplitAt(query, word); parts.size() > 1) {
            const auto isAlways = [&](std::string_view part) { return IsAlways(part, outcome); };
            return whenAny == outcome ? std::any_of(parts.begin(), parts.end(), isAlways)
                                      : std::all_of(parts.begin(), parts.end(), isAlways);
        }
    }
    return IsAlwaysAsPart(query, outcome);
}

} // namespace

std::optional<Unpaired> FindUnpaired(std::string_view query)
{
    return Read(query).unpaired;
}

std::string OutsideQuotes(std::string_view query)
{
    return Read(query).outsideQuotes;
}

std::string OutsideBrackets(std::string_view query)
{
    return Read(query).outsideBrackets;
}

bool HasWord(std::string_view text, std::string_view word)
{
    const std::string lower = LowerCase(text);
    const std::string sought = LowerCase(word);
    for (std::size_t at = 0; (at = lower.find(sought, at)) != std::string::npos; ++at) {
        const std::size_t end = at + sought.size();
        if ((at == 0 || !IsWordCharacter(lower[at - 1])) && (end == lower.size() || !IsWordCharacter(lower[end]))) {
            return true;
        }
    }
    return false;
}

bool MatchesEveryRecord(std::string_view query)
{
    constexpr std::size_t longest = 4096; // a text that matches everything is short; nested texts recurse
    return query.size() <= longest && IsAlways(query, true);
}

std::string_view WithoutOuterBlanks(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string LowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    });
    return lower;
}

} // namespace secm::analysis
