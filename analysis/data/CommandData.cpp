#include "analysis/data/CommandData.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <sstream>
#include <string_view>

namespace secm::analysis {

namespace {

using Json = nlohmann::json;

constexpr std::size_t shownBytes = 200; // of an answer, in messages

std::vector<std::string> WordsOf(const std::string& command)
{
    std::istringstream stream(command);
    std::vector<std::string> words;
    for (std::string word; std::getline(stream, word, ' ');) {
        if (!word.empty()) {
            words.push_back(word);
        }
    }
    if (words.empty()) {
        throw DataError("no program is named; write command:PROGRAM ARGS");
    }
    return words;
}

Json FilterJson(const RowFilter& filter)
{
    return filter ? Json(*filter) : Json();
}

} // namespace

CommandData::CommandData(const std::string& command, unsigned timeoutSeconds)
    : words(WordsOf(command)), limit(timeoutSeconds), process(std::in_place, words)
{
}

void CommandData::RefuseAnswer(const std::string& answer, const char* expected) const
{
    throw DataError(fmt::format("the command '{}' answered '{}'; expected {} or {{\"error\":\"...\"}}, on one line",
                                words.front(), answer.substr(0, shownBytes), expected));
}

// Without a filter, an error is one of the program or of its data.
Json CommandData::Ask(const Json& question, bool hasFilter)
{
    std::string line;
    try {
        line = question.dump();
    } catch (const Json::type_error&) { // U+FFFD in place of bytes would make another filter of it
        throw FilterRefused("the filter or the key is not UTF-8, which the lines to a command must be");
    }
    if (!process) {
        process.emplace(words);
    }
    std::string text;
    switch (process->Ask(line, limit, text)) {
    case CommandProcess::End::answered:
        break;
    case CommandProcess::End::timedOut: {
        process.reset(); // its answer could come later, for another question
        const std::string tooSlow = fmt::format("not finished within {} s", limit.count());
        if (hasFilter) {
            throw FilterRefused(tooSlow);
        }
        throw DataError(fmt::format("the command '{}' has {}", words.front(), tooSlow));
    }
    case CommandProcess::End::ended:
        throw DataError(fmt::format("the command '{}' {}", words.front(), process->LastWords()));
    }
    Json answer = Json::parse(text, nullptr, false);
    if (!answer.is_object()) {
        RefuseAnswer(text, "a JSON object");
    }
    if (const auto error = answer.find("error"); error != answer.end()) {
        const std::string said = error->is_string() ? error->get<std::string>() : error->dump();
        if (hasFilter) {
            throw FilterRefused(said);
        }
        throw DataError(fmt::format("the command '{}' says: {}", words.front(), said));
    }
    return answer;
}

std::uint64_t CommandData::CountIn(const Json& answer, const char* expected) const
{
    const auto count = answer.find("count");
    if (count == answer.end() || !count->is_number_unsigned()) {
        RefuseAnswer(answer.dump(), expected);
    }
    return count->get<std::uint64_t>();
}

std::vector<std::string> CommandData::KeysIn(const Json& answer, std::size_t most, const char* expected) const
{
    const auto found = answer.find("keys");
    if (found == answer.end() || !found->is_array() || found->size() > most) {
        RefuseAnswer(answer.dump(), expected);
    }
    std::vector<std::string> keys;
    for (const Json& key : *found) {
        if (!key.is_string()) {
            RefuseAnswer(answer.dump(), expected);
        }
        keys.push_back(key.get<std::string>());
    }
    return keys;
}

std::uint64_t CommandData::Count(const RowFilter& filter)
{
    return CountIn(Ask({{"count", FilterJson(filter)}}, filter.has_value()), R"({"count":N})");
}

bool CommandData::Matches(const RowFilter& filter, const std::string& key)
{
    const Json answer = Ask({{"matches", FilterJson(filter)}, {"key", key}}, filter.has_value());
    const auto matches = answer.find("matches");
    if (matches == answer.end() || !matches->is_boolean()) {
        RefuseAnswer(answer.dump(), R"({"matches":true} or {"matches":false})");
    }
    return matches->get<bool>();
}

std::vector<std::string> CommandData::Keys(const RowFilter& filter, std::size_t most)
{
    return KeysIn(Ask({{"keys", FilterJson(filter)}, {"limit", most}}, filter.has_value()), most,
                  R"({"keys":["KEY",...]}, at most as many as asked for,)");
}

RowDifference CommandData::Difference(const RowFilter& filter, const RowFilter& other, std::size_t most)
{
    constexpr const char* expected = R"({"count":N,"keys":["KEY",...]}, with at most as many keys as asked for,)";
    const Json both = Json::array({FilterJson(filter), FilterJson(other)});
    const Json answer = Ask({{"difference", both}, {"limit", most}}, filter || other);
    RowDifference difference{CountIn(answer, expected), KeysIn(answer, most, expected)};
    if (difference.keys.size() > difference.count || (difference.keys.empty() && difference.count != 0 && most != 0)) {
        RefuseAnswer(answer.dump(), expected);
    }
    return difference;
}

} // namespace secm::analysis
