#include "tools/acfilter/commands/ListedNames.h"

#include "tests/Cases.h"

#include <optional>
#include <utility>
#include <vector>

namespace {

using secm::acfilter::ListedNames;
using Answers = std::vector<std::pair<std::string, std::optional<bool>>>;

// A wrong "yes" would leave a user out of a comparison.
TEST(ListedNamesTest, TellWhichNamesAreAmongThem)
{
    const struct {
        std::vector<std::string> added;
        Answers answers;
    } cases[] = {
        {{}, {{"a", false}, {"b", false}}},
        {{"b", "d"}, {{"a", false}, {"b", true}, {"bb", false}, {"d", true}, {"e", false}, {"f", false}}},
        {{"a", "b", "c"}, {{"c", true}, {"d", false}}},
        {{"", "a"}, {{"", true}, {"a", true}}},
        {{"Z", "a", "\xc3\xa9"}, {{"Z", true}, {"a", true}, {"\xc3\xa9", true}}},
        {{"a", "b\nc", "d"}, {{"a", true}, {"b", false}, {"b\nc", std::nullopt}, {"c", false}, {"d", true}}},
        {{"b", "a"}, {{"a", std::nullopt}, {"b", std::nullopt}}},
        {{"a", "b", "c"}, {{"b", true}, {"a", std::nullopt}, {"c", std::nullopt}}},
    };
    for (const auto& [added, answers] : cases) {
        ListedNames names;
        for (const std::string& name : added) {
            names.Add(name);
        }
        for (const auto& [name, answer] : answers) {
            EXPECT_EQ(names.Holds(name), answer) << added.size() << " names; " << name;
        }
    }
}

} // namespace
