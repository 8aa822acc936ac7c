#include "analysis/check/TextAppearance.h"

#include "analysis/check/Spelling.h"
#include "analysis/check/WordCharacter.h"

#include <fmt/core.h>
#include <unicase.h>
#include <uninorm.h>
#include <unistr.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace secm::analysis {

namespace {

constexpr ucs4_t noBreakSpace = 0xA0;
constexpr ucs4_t softHyphen = 0xAD;
constexpr ucs4_t firstOfSpaces = 0x2000;
constexpr ucs4_t lastOfSpaces = 0x200A;
constexpr ucs4_t narrowNoBreakSpace = 0x202F;
constexpr ucs4_t ideographicSpace = 0x3000;
constexpr ucs4_t lastControl = 0x1F;
constexpr ucs4_t deleteControl = 0x7F;

// First and last of each range. The joiners U+200C and U+200D are letters' parts in several scripts.
constexpr std::array<std::pair<ucs4_t, ucs4_t>, 7> invisible = {{{softHyphen, softHyphen},
                                                                 {0x200B, 0x200B},
                                                                 {0x200E, 0x200F},
                                                                 {0x202A, 0x202E},
                                                                 {0x2060, 0x2064},
                                                                 {0x2066, 0x2069},
                                                                 {0xFEFF, 0xFEFF}}};

// Cyrillic and Greek letters, and the Latin letters that they look like.
constexpr std::array<std::pair<ucs4_t, char>, 49> lookalikes = {{
    {0x0391, 'A'}, {0x0392, 'B'}, {0x0395, 'E'}, {0x0396, 'Z'}, {0x0397, 'H'}, {0x0399, 'I'}, {0x039A, 'K'},
    {0x039C, 'M'}, {0x039D, 'N'}, {0x039F, 'O'}, {0x03A1, 'P'}, {0x03A4, 'T'}, {0x03A5, 'Y'}, {0x03A7, 'X'},
    {0x03BF, 'o'}, {0x03F2, 'c'}, {0x0405, 'S'}, {0x0406, 'I'}, {0x0408, 'J'}, {0x0410, 'A'}, {0x0412, 'B'},
    {0x0415, 'E'}, {0x041A, 'K'}, {0x041C, 'M'}, {0x041D, 'H'}, {0x041E, 'O'}, {0x0420, 'P'}, {0x0421, 'C'},
    {0x0422, 'T'}, {0x0423, 'Y'}, {0x0425, 'X'}, {0x0430, 'a'}, {0x0435, 'e'}, {0x043E, 'o'}, {0x0440, 'p'},
    {0x0441, 'c'}, {0x0443, 'y'}, {0x0445, 'x'}, {0x0455, 's'}, {0x0456, 'i'}, {0x0458, 'j'}, {0x04BB, 'h'},
    {0x04C0, 'I'}, {0x04CF, 'l'}, {0x0501, 'd'}, {0x051B, 'q'}, {0x051D, 'w'}, {0x03BD, 'v'}, {0x03C1, 'p'},
}};

bool IsAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char character) { return static_cast<signed char>(character) >= 0; });
}

bool IsBlankCharacter(ucs4_t character)
{
    return character == ' ' || character == noBreakSpace || (character >= firstOfSpaces && character <= lastOfSpaces) ||
           character == narrowNoBreakSpace || character == ideographicSpace;
}

bool IsInvisibleCharacter(ucs4_t character)
{
    return character <= lastControl || character == deleteControl ||
           std::any_of(invisible.begin(), invisible.end(),
                       [&](const auto& range) { return character >= range.first && character <= range.second; });
}

std::optional<char> Lookalike(ucs4_t character)
{
    const auto* found =
        std::find_if(lookalikes.begin(), lookalikes.end(), [&](const auto& pair) { return pair.first == character; });
    return found != lookalikes.end() ? std::optional(found->second) : std::nullopt;
}

// The characters of UTF-8; no value when `text` is none.
std::optional<std::vector<ucs4_t>> CharactersOf(std::string_view text)
{
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::vector<ucs4_t> characters;
    for (std::size_t at = 0; at < text.size();) {
        ucs4_t character = 0;
        const int length = u8_mbtoucr(&character, bytes + at, text.size() - at);
        if (length <= 0) {
            return std::nullopt;
        }
        characters.push_back(character);
        at += static_cast<std::size_t>(length);
    }
    return characters;
}

void Append(std::string& text, ucs4_t character)
{
    constexpr int longest = 6;
    std::array<std::uint8_t, longest> bytes{};
    const int length = u8_uctomb(bytes.data(), character, longest);
    text.append(bytes.begin(), bytes.begin() + std::max(length, 0));
}

std::string LowerAscii(std::string_view text)
{
    std::string lower(text);
    for (char& character : lower) {
        if (character >= 'A' && character <= 'Z') {
            character = static_cast<char>(character - 'A' + 'a');
        }
    }
    return lower;
}

std::string CaseFolded(const std::string& text)
{
    std::size_t length = 0;
    const std::unique_ptr<std::uint8_t, decltype(&std::free)> folded(
        u8_casefold(reinterpret_cast<const std::uint8_t*>(text.data()), text.size(), nullptr, UNINORM_NFKC, nullptr,
                    &length),
        std::free);
    return folded != nullptr ? std::string(folded.get(), folded.get() + length) : LowerAscii(text);
}

// The words of a text in which a Latin letter stands beside one of another alphabet that looks like a Latin letter.
bool MixesAlphabets(const std::vector<ucs4_t>& characters)
{
    bool hasLatin = false;
    bool hasLookalike = false;
    for (const ucs4_t character : characters) {
        if (character > deleteControl) {
            hasLookalike = hasLookalike || Lookalike(character);
        } else if (const char ascii = static_cast<char>(character); !IsWordCharacter(ascii)) {
            hasLatin = hasLookalike = false;
        } else {
            hasLatin = hasLatin || (ascii > '9' && ascii != '_');
        }
        if (hasLatin && hasLookalike) {
            return true;
        }
    }
    return false;
}

} // namespace

std::string Appearance(std::string_view text)
{
    const std::string cleaned = Cleaned(text);
    const auto characters = CharactersOf(cleaned);
    if (!characters) {
        return LowerAscii(cleaned);
    }
    std::string plain;
    bool isBehindBlank = false;
    for (const ucs4_t character : *characters) {
        const bool isBlank = IsBlankCharacter(character);
        if (isBlank && !isBehindBlank) {
            plain += ' ';
        } else if (!isBlank) {
            const auto latin = Lookalike(character);
            Append(plain, latin ? static_cast<ucs4_t>(*latin) : character);
        }
        isBehindBlank = isBlank;
    }
    return IsAscii(plain) ? LowerAscii(plain) : CaseFolded(plain);
}

std::string Cleaned(std::string_view text)
{
    auto characters = CharactersOf(text);
    if (!characters) {
        return std::string(text);
    }
    std::erase_if(*characters, IsInvisibleCharacter);
    const auto first = std::find_if_not(characters->begin(), characters->end(), IsBlankCharacter);
    const auto last =
        std::find_if_not(characters->rbegin(), std::make_reverse_iterator(first), IsBlankCharacter).base();
    std::string cleaned;
    std::for_each(first, last, [&](ucs4_t character) { Append(cleaned, character); });
    return cleaned;
}

std::string HiddenFlaw(std::string_view text)
{
    const auto characters = CharactersOf(text);
    if (!characters || characters->empty()) {
        return {};
    }
    const auto found = std::find_if(characters->begin(), characters->end(), IsInvisibleCharacter);
    if (found != characters->end()) {
        return fmt::format("the invisible character U+{:04X}", static_cast<std::uint32_t>(*found));
    }
    const auto nameOf = [](ucs4_t blank) {
        return blank == ' ' ? std::string("a blank")
                            : fmt::format("the blank U+{:04X}", static_cast<std::uint32_t>(blank));
    };
    if (IsBlankCharacter(characters->front())) {
        return nameOf(characters->front()) + " at its start";
    }
    if (IsBlankCharacter(characters->back())) {
        return nameOf(characters->back()) + " at its end";
    }
    if (std::find(characters->begin(), characters->end(), noBreakSpace) != characters->end()) {
        return "the no-break space U+00A0";
    }
    return MixesAlphabets(*characters) ? "letters of two alphabets in one word" : "";
}

std::vector<std::string> ListedValues(std::string_view text)
{
    constexpr std::string_view separators = ",;|";
    std::vector<std::string> parts;
    while (text.find_first_of(separators) != std::string_view::npos) {
        const std::size_t end = text.find_first_of(separators);
        parts.push_back(Cleaned(text.substr(0, end)));
        text.remove_prefix(end + 1);
    }
    if (!parts.empty()) {
        parts.push_back(Cleaned(text));
    }
    std::erase(parts, "");
    return parts;
}

std::string ProbablyMeant(const std::string& name, const std::vector<std::string>& names)
{
    const std::string appearance = Appearance(name);
    const auto alike = std::find_if(names.begin(), names.end(), [&](const std::string& other) {
        return other != name && Appearance(other) == appearance;
    });
    return alike != names.end() ? *alike : Nearest(name, names);
}

} // namespace secm::analysis
