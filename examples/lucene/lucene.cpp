// Answers questions about rows that are in an index of Lucene, so that acfilter can try filters on them:
// acfilter report --data 'command:lucene ROWS KEY' ...
// For another engine, replace DocumentIndex; the questions and answers stay as they are.
#include "examples/lucene/DocumentIndex.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace {

using Json = nlohmann::json;
using Filter = std::optional<std::string>;

Filter FilterOf(const Json& filter)
{
    return filter.is_null() ? Filter() : filter.get<std::string>();
}

Json RowsIn(const std::string& path)
{
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    Json rows = Json::parse(file, nullptr, false);
    const auto isObject = [](const Json& row) { return row.is_object(); };
    if (!rows.is_array() || !std::all_of(rows.begin(), rows.end(), isObject)) {
        throw std::runtime_error(path + " must contain a JSON array of objects, such as sqlite3 -json prints");
    }
    return rows;
}

Json CountOf(const std::vector<bool>& isFound)
{
    return std::count(isFound.begin(), isFound.end(), true);
}

Json KeysOf(const DocumentIndex& index, const std::vector<bool>& isFound, std::size_t limit)
{
    Json keys = Json::array();
    for (std::size_t row = 0; row < isFound.size() && keys.size() < limit; ++row) {
        if (isFound[row]) {
            keys.push_back(index.Keys()[row]);
        }
    }
    return keys;
}

bool HasKey(const DocumentIndex& index, const std::vector<bool>& isFound, const std::string& key)
{
    for (std::size_t row = 0; row < isFound.size(); ++row) {
        if (isFound[row] && index.Keys()[row] == key) {
            return true;
        }
    }
    return false;
}

Json Answer(const DocumentIndex& index, const Json& question)
{
    if (question.contains("count")) {
        return {{"count", CountOf(index.Find(FilterOf(question["count"])))}};
    }
    if (question.contains("matches")) {
        const auto isFound = index.Find(FilterOf(question["matches"]));
        return {{"matches", HasKey(index, isFound, question.at("key").get<std::string>())}};
    }
    if (question.contains("keys")) {
        const auto isFound = index.Find(FilterOf(question["keys"]));
        return {{"keys", KeysOf(index, isFound, question.at("limit").get<std::size_t>())}};
    }
    if (question.contains("difference")) {
        auto isFound = index.Find(FilterOf(question["difference"].at(0)));
        const auto byOther = index.Find(FilterOf(question["difference"].at(1)));
        for (std::size_t row = 0; row < isFound.size(); ++row) {
            isFound[row] = isFound[row] && !byOther[row];
        }
        return {{"count", CountOf(isFound)}, {"keys", KeysOf(index, isFound, question.at("limit").get<std::size_t>())}};
    }
    throw std::runtime_error("the question must have 'count', 'matches', 'keys' or 'difference'");
}

} // namespace

int main(int argc, char** argv)
try {
    if (argc != 3) {
        std::cerr
            << "Usage: lucene ROWS KEY\nROWS is a file with a JSON array of objects, KEY names the field that tells "
               "them apart.\nQuestions are lines of standard input; see docs/engines.md.\n";
        return 2;
    }
    const DocumentIndex index(RowsIn(argv[1]), argv[2]);
    for (std::string line; std::getline(std::cin, line);) {
        Json answer;
        try {
            answer = Answer(index, Json::parse(line));
        } catch (const Json::exception& error) {
            answer = {{"error", std::string("the question cannot be read: ") + error.what()}};
        } catch (const std::exception& error) {
            answer = {{"error", error.what()}};
        }
        // A message may quote bytes that are not UTF-8. The program that asks waits for the whole line.
        std::cout << answer.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
    }
    return 0;
} catch (const std::exception& error) {
    std::cerr << "lucene: " << error.what() << '\n';
    return 1;
}
