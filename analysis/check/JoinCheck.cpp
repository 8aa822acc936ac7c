// The texts that join clauses, conditions and values: filter_delimiter, conditions_delimiter and
// value_multiplicity_delimiter.
#include "analysis/check/CheckRules.h"

#include "analysis/check/FilledTemplate.h"
#include "analysis/check/QueryText.h"
#include "analysis/check/Spelling.h"
#include "analysis/check/UnpairedMark.h"
#include "analysis/check/WordCharacter.h"

#include <fmt/core.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace secm::analysis {

namespace {

bool IsOr(const std::string& delimiter)
{
    const std::string_view sign = WithoutOuterBlanks(delimiter);
    return HasWord(OutsideQuotes(delimiter), "or") || sign == "||" || sign == "|";
}

bool IsWord(std::string_view text, bool atFront)
{
    return !text.empty() && IsWordCharacter(atFront ? text.front() : text.back());
}

// A text that the module joins with others, filled for one user.
struct Part {
    std::string text;
    CFG_Place place;
    std::string name; // of its key
};

struct Join {
    std::string key;
    std::string delimiter;
    CFG_Place place;
    std::vector<Part> parts; // in their order
};

void BlanksAreMissing(const Join& join, FindingSink& sink)
{
    for (std::size_t next = 1; next < join.parts.size(); ++next) {
        const std::string& before = join.parts[next - 1].text;
        const std::string& behind = join.parts[next].text;
        const bool isGluedBefore = IsWord(before, false) && IsWord(join.delimiter, true);
        const bool isGluedBehind = IsWord(join.delimiter, false) && IsWord(behind, true);
        if (isGluedBefore || isGluedBehind) {
            sink.Error("AC019", join.place,
                       fmt::format("{} '{}' has no blank at its {}: {}{}{}", join.key, join.delimiter,
                                   isGluedBefore && isGluedBehind ? "ends"
                                   : isGluedBefore                ? "beginning"
                                                                  : "end",
                                   before, join.delimiter, behind),
                       "it makes one word with the text beside it: the filters of users whom both restrict break",
                       fmt::format("write {} = \" {} \"", join.key, WithoutOuterBlanks(join.delimiter)));
            return;
        }
    }
}

// A template that begins or ends with the word by which the module joins it.
void JoinedTwice(const Join& join, FindingSink& sink)
{
    const std::string word = LowerCase(WithoutOuterBlanks(join.delimiter));
    if (join.parts.size() < 2 || (word != "and" && word != "or")) {
        return;
    }
    for (const Part& part : join.parts) {
        const std::string text = LowerCase(WithoutOuterBlanks(OutsideQuotes(part.text)));
        for (const auto& [sign, name] : {std::pair<std::string, const char*>("and", "AND"), {"or", "OR"}}) {
            const bool isFirst = text.starts_with(sign) && !IsWord(text.substr(sign.size()), true);
            const bool isLast =
                text.ends_with(sign) && !IsWord(std::string_view(text).substr(0, text.size() - sign.size()), false);
            if (isFirst || isLast) {
                sink.Error("AC019", part.place,
                           fmt::format("{} {} with {}, and {} joins it by '{}' already", part.name,
                                       isFirst ? "begins" : "ends", name, join.key, join.delimiter),
                           "the filters of users whom it restricts break", fmt::format("remove {}", name));
            }
        }
    }
}

// A word such as AN. Operators of other languages, such as XOR and NEAR, are no misspelt ones.
void IsMisspelt(const Join& join, FindingSink& sink)
{
    const std::string word = LowerCase(WithoutOuterBlanks(join.delimiter));
    const bool isWord = word.size() > 1 && word.size() < 5 && std::all_of(word.begin(), word.end(), IsWordCharacter);
    if (!isWord || word == "and" || word == "or" || word == "xor" || word == "nor" || word == "not") {
        return;
    }
    for (const char* meant : {"and", "or"}) {
        if (Distance(word, meant) == 1) {
            sink.Error("AC019", join.place, fmt::format("{} '{}' is no operator", join.key, join.delimiter),
                       "the filters of users whom it concerns break",
                       fmt::format("write {} = \" {} \"", join.key, word.starts_with('a') ? "AND" : "OR"));
            return;
        }
    }
}

// In lists of JSON and in similar languages, a comma stands between conditions that must all hold.
void FieldsAreJoinedByComma(const Join& fields, FindingSink& sink)
{
    const bool isSimilar = std::any_of(fields.parts.begin(), fields.parts.end(), [](const Part& part) {
        return part.text.find_first_of("{:") != std::string::npos;
    });
    if (fields.parts.size() > 1 && WithoutOuterBlanks(fields.delimiter) == "," && !isSimilar) {
        sink.Error("AC019", fields.place, fmt::format("{} '{}' is no AND", fields.key, fields.delimiter),
                   "the filters of users whom two fields restrict break, or show what one of the fields lets through",
                   "write an AND, such as filter_delimiter = \" AND \"");
    }
}

// The host writes the word before the filter, so it would stand there twice.
void BeginsWithWhere(const std::string& text, const CFG_Place& place, const std::string& name, FindingSink& sink)
{
    const std::string lower = LowerCase(WithoutOuterBlanks(text));
    constexpr std::string_view where = "where";
    if (!lower.starts_with(where) || lower.size() < where.size() + 2 || lower[where.size()] != ' ') {
        return;
    }
    const std::string_view behind = WithoutOuterBlanks(std::string_view(lower).substr(where.size()));
    const bool isColumn = HasWord(std::string(behind.substr(0, behind.find(' '))), "in") || behind.starts_with("is ") ||
                          behind.starts_with("like ") || behind.starts_with("between ") || behind.starts_with("not ");
    if (!isColumn && (IsWord(behind, true) || behind.starts_with('(') || behind.starts_with('"'))) {
        sink.Error("AC019", place, fmt::format("{} begins with WHERE", name),
                   "the host writes WHERE before the whole filter: the filters that contain it break", "remove WHERE");
    }
}

void UnpairedInDelimiter(const Join& join, FindingSink& sink)
{
    // A delimiter such as ") OR (" is right: parentheses stand around what it joins.
    if (const auto unpaired = FindUnpaired("(" + join.delimiter + ")"); unpaired && unpaired->position > 0) {
        ReportUnpaired({unpaired->mark, unpaired->position - 1, unpaired->isOpen}, join.delimiter, join.key, join.place,
                       sink);
    }
}

void CheckJoin(const Join& join, FindingSink& sink)
{
    if (!join.delimiter.empty()) {
        BlanksAreMissing(join, sink);
        JoinedTwice(join, sink);
        IsMisspelt(join, sink);
        UnpairedInDelimiter(join, sink);
    }
}

std::vector<Part> PartsOf(const CheckedRepository& repository, const CheckedDefinition& definition)
{
    std::vector<Part> parts;
    for (const CheckedCondition& condition : definition.conditions) {
        const CheckedScope scope{repository, definition, condition};
        parts.push_back({FilledTemplate(scope).one, scope.PlaceOf("condition"),
                         fmt::format("{} of the field '{}'", condition.Key("condition"), definition.rule->name)});
    }
    return parts;
}

void ValuesAreGlued(const CheckedRepository& repository, FindingSink& sink)
{
    const std::string& delimiter = repository.Rules().settings.valueMultiplicityDelimiter;
    const std::string word = LowerCase(delimiter);
    if (word == "or" || word == "and") {
        constexpr const char* key = "value_multiplicity_delimiter";
        CheckJoin({key, delimiter, repository.table.PlaceOf(key), {{"value1", {}, {}}, {"value2", {}, {}}}}, sink);
    }
}

void FieldsAreJoinedByOr(const CheckedRepository& repository, FindingSink& sink)
{
    const std::string& delimiter = repository.Rules().settings.filterDelimiter;
    if (repository.Rules().fields.size() > 1 && IsOr(delimiter)) {
        sink.Error("AC019", repository.table.PlaceOf("filter_delimiter"),
                   fmt::format("filter_delimiter '{}' joins the fields by OR", delimiter),
                   "users see every record that one of their fields lets through, whatever the other fields say",
                   "write an AND, such as filter_delimiter = \" AND \"; alternatives belong into the conditions of "
                   "one field");
    }
}

} // namespace

void CheckJoins(const CheckedRepository& repository, FindingSink& sink)
{
    FieldsAreJoinedByOr(repository, sink);
    ValuesAreGlued(repository, sink);
    Join fields{"filter_delimiter",
                repository.Rules().settings.filterDelimiter,
                repository.table.PlaceOf("filter_delimiter"),
                {}};
    for (const CheckedDefinition& definition : repository.definitions) {
        std::vector<Part> parts = PartsOf(repository, definition);
        for (const Part& part : parts) {
            BeginsWithWhere(part.text, part.place, part.name, sink);
        }
        if (parts.size() == 1) {
            fields.parts.push_back(parts.front());
        } else if (parts.size() > 1) {
            fields.parts.push_back({"(" + parts.front().text + ")", parts.front().place, ""});
            CheckJoin({"conditions_delimiter", definition.rule->conditionsDelimiter,
                       definition.table.PlaceOf("conditions_delimiter"), std::move(parts)},
                      sink);
        }
    }
    CheckJoin(fields, sink);
    FieldsAreJoinedByComma(fields, sink);
    const FilterSettings& settings = repository.Rules().settings;
    BeginsWithWhere(settings.hideAllFilter, repository.table.PlaceOf("hide_all_filter"), "hide_all_filter", sink);
    BeginsWithWhere(settings.defaultFilter, repository.table.PlaceOf("default_filter"), "default_filter", sink);
}

} // namespace secm::analysis
