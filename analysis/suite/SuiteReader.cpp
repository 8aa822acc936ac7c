#include "analysis/check/Spelling.h"
#include "analysis/suite/Suite.h"
#include "analysis/trace/GrantText.h"
#include "platform/database/ConnectionText.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

namespace secm::analysis {

namespace {

using TextList = std::vector<std::string>;

class SuiteReader {
public:
    explicit SuiteReader(const std::string& suiteFile)
        : file(suiteFile), folder(std::filesystem::path(suiteFile).parent_path())
    {
    }

    Suite Read()
    {
        const toml::table root = Parse();
        RequireKnown(root, {"configuration", "repository", "security", "users", "groups", "data", "test"});
        Suite suite;
        suite.file = file;
        suite.configuration = PathOf(RequiredText(root, "configuration"));
        suite.repository = RequiredText(root, "repository");
        suite.repositoryPlace = PlaceOf(root, "repository");
        suite.security = SecurityOf(root);
        ReadUsers(root, suite.users);
        if (suite.security && !suite.users.users.empty()) {
            Refuse(PlaceOf(root, "users"), "the users are those of the security database that 'security' names; "
                                           "remove one of the two");
        }
        if (const toml::table* data = Table(root, "data")) {
            suite.data = DataOf(*data);
        }
        ReadTests(root, suite);
        return suite;
    }

private:
    [[noreturn]] void Refuse(const CFG_Place& place, const std::string& text) const { throw SuiteError(place, text); }

    CFG_Place PlaceOf(const toml::source_region& source) const
    {
        return {file, std::max(source.begin.line, 1U), std::max(source.begin.column, 1U)};
    }

    // Of a key in a table, or of the table when it lacks the key.
    CFG_Place PlaceOf(const toml::table& table, std::string_view key) const
    {
        for (auto&& [name, value] : table) {
            if (name.str() == key) {
                return PlaceOf(name.source());
            }
        }
        return PlaceOf(table.source());
    }

    toml::table Parse() const
    {
        std::error_code ignored;
        const bool isFolder = std::filesystem::is_directory(file, ignored);
        std::ifstream stream(file, std::ios::binary);
        if (isFolder || !stream.is_open()) {
            Refuse({file, 1, 1}, fmt::format("cannot be read: {}", std::strerror(isFolder ? EISDIR : errno)));
        }
        const std::string content{std::istreambuf_iterator<char>(stream), {}};
        try {
            return toml::parse(content, file);
        } catch (const toml::parse_error& error) {
            Refuse(PlaceOf(error.source()), std::string(error.description()));
        }
    }

    void RequireKnown(const toml::table& table, const TextList& known) const
    {
        for (auto&& [key, value] : table) {
            const std::string name(key.str());
            if (std::find(known.begin(), known.end(), name) == known.end()) {
                Refuse(
                    PlaceOf(key.source()),
                    fmt::format("the key '{}' is unknown; {}", name,
                                DidYouMean(name, known, fmt::format("the keys here are {}", fmt::join(known, ", ")))));
            }
        }
    }

    std::string TextOf(const toml::node& node, const std::string& name) const
    {
        if (const auto* text = node.as_string()) {
            if (text->get().find('\0') != std::string::npos) {
                Refuse(PlaceOf(node.source()), fmt::format("{} contains a NUL character", name));
            }
            return text->get();
        }
        Refuse(PlaceOf(node.source()), fmt::format("{} must be a text between quotes", name));
    }

    std::optional<std::string> Text(const toml::table& table, const std::string& key) const
    {
        const toml::node* node = table.get(key);
        return node == nullptr ? std::nullopt : std::optional(TextOf(*node, key));
    }

    std::string RequiredText(const toml::table& table, const std::string& key) const
    {
        const std::optional<std::string> text = Text(table, key);
        if (!text || text->empty()) {
            Refuse(PlaceOf(table, key),
                   fmt::format("'{0}' is {1}; write {0} = \"...\"", key, text ? "empty" : "missing"));
        }
        return *text;
    }

    const toml::table* Table(const toml::table& table, const std::string& key) const
    {
        const toml::node* node = table.get(key);
        if (node != nullptr && !node->is_table()) {
            Refuse(PlaceOf(table, key), fmt::format("'{0}' must be a table: [{0}]", key));
        }
        return node == nullptr ? nullptr : node->as_table();
    }

    // A list of texts; of keys, where whole numbers stand for their digits.
    TextList List(const toml::node& node, const std::string& name, bool takesNumbers) const
    {
        const toml::array* array = node.as_array();
        if (array == nullptr) {
            Refuse(PlaceOf(node.source()), fmt::format("{} must be a list: [\"...\", \"...\"]", name));
        }
        TextList texts;
        for (const toml::node& element : *array) {
            const auto* number = element.as_integer();
            if (takesNumbers && number == nullptr && !element.is_string()) {
                Refuse(PlaceOf(element.source()),
                       fmt::format("each element of {} must be a text between quotes, or a whole number", name));
            }
            texts.push_back(takesNumbers && number != nullptr ? std::to_string(number->get())
                                                              : TextOf(element, "each element of " + name));
        }
        return texts;
    }

    TextList Keys(const toml::table& table, const std::string& name) const
    {
        const toml::node* node = table.get(name);
        return node == nullptr ? TextList() : List(*node, name, true);
    }

    std::string PathOf(const std::string& path) const { return (folder / path).string(); }

    // The text with the path of an SQLite file from the suite's folder.
    std::string ConnectionOf(const std::string& text, const CFG_Place& place) const
    {
        try {
            const platform::DatabaseAddress address = platform::DatabaseAddressOf(text, 0);
            const auto* sqlite = std::get_if<platform::SqliteAddress>(&address);
            return sqlite == nullptr ? text : fmt::format("sqlite3://db=\"{}\"", PathOf(sqlite->file));
        } catch (const std::runtime_error& error) {
            Refuse(place, error.what());
        }
    }

    std::optional<std::string> SecurityOf(const toml::table& root) const
    {
        const std::optional<std::string> text = Text(root, "security");
        return text ? std::optional(ConnectionOf(*text, PlaceOf(root, "security"))) : std::nullopt;
    }

    std::vector<PermissionBase> GrantsOf(const toml::table& table) const
    {
        std::vector<PermissionBase> grants;
        const toml::node* node = table.get("grants");
        if (node == nullptr) {
            return grants;
        }
        List(*node, "grants", false);
        for (const toml::node& element : *node->as_array()) {
            const std::string text = element.as_string()->get();
            const auto grant = GrantFrom(text);
            if (!grant) {
                Refuse(PlaceOf(element.source()), fmt::format("'{}' is not of the form NAME:VALUE or "
                                                              "NAME:VALUE:RESOURCE with a value from 0 to 4294967295",
                                                              text));
            }
            grants.push_back(*grant);
        }
        return grants;
    }

    template <class Handle>
    void ForEachTable(const toml::table& root, const std::string& key, const TextList& known, Handle handle) const
    {
        const toml::table* tables = Table(root, key);
        if (tables == nullptr) {
            return;
        }
        for (auto&& [name, node] : *tables) {
            const toml::table* table = node.as_table();
            if (table == nullptr) {
                Refuse(PlaceOf(name.source()), fmt::format("write a table for each name: [{}.NAME]", key));
            }
            RequireKnown(*table, known);
            handle(std::string(name.str()), *table);
        }
    }

    void ReadUsers(const toml::table& root, SuiteUsers& read) const
    {
        TextList groups;
        ForEachTable(root, "groups", {"grants"}, [&](const std::string& name, const toml::table& table) {
            read.groups[name] = GrantsOf(table);
            groups.push_back(name);
        });
        ForEachTable(
            root, "users", {"group", "attributes", "grants"}, [&](const std::string& name, const toml::table& table) {
                SuiteUsers::User& user = read.users[name];
                user.group = Text(table, "group").value_or("");
                user.grants = GrantsOf(table);
                if (!user.group.empty() && read.groups.count(user.group) == 0) {
                    Refuse(PlaceOf(table, "group"),
                           fmt::format("there is no group '{}' in the suite; {}", user.group,
                                       DidYouMean(user.group, groups,
                                                  fmt::format("add [groups.{}], which may be empty", user.group))));
                }
                if (const toml::table* attributes = Table(table, "attributes")) {
                    for (auto&& [attribute, value] : *attributes) {
                        user.attributes[std::string(attribute.str())] = TextOf(value, "an attribute");
                    }
                }
            });
    }

    SuiteData DataOf(const toml::table& table) const
    {
        RequireKnown(table, {"sql", "connection", "command", "table", "key"});
        SuiteData data;
        int sources = 0;
        const auto source = [&](const char* key, std::string& text) {
            if (const auto written = Text(table, key)) {
                text = *written;
                data.place = PlaceOf(table, key);
                ++sources;
            }
        };
        source("sql", data.statements);
        source("connection", data.connection);
        source("command", data.command);
        if (sources != 1 || data.statements + data.connection + data.command == "") {
            Refuse(PlaceOf(table.source()), "[data] needs one of sql (a file of SQL statements), connection (of a "
                                            "database) and command (a program with its arguments)");
        }
        data.table = Text(table, "table").value_or("");
        data.key = Text(table, "key").value_or("");
        if (!data.command.empty() && !(data.table + data.key).empty()) {
            Refuse(PlaceOf(table, data.table.empty() ? "key" : "table"), "a command knows its rows; remove this key");
        }
        if (data.command.empty() && data.table.empty()) {
            Refuse(data.place, "[data] needs the table whose rows the filters are for: table = \"...\"");
        }
        data.statements = data.statements.empty() ? "" : PathOf(data.statements);
        data.connection = data.connection.empty() ? "" : ConnectionOf(data.connection, data.place);
        return data;
    }

    void ReadTests(const toml::table& root, Suite& suite) const
    {
        const toml::node* node = root.get("test");
        const toml::array* tests = node == nullptr ? nullptr : node->as_array();
        if (tests == nullptr || tests->empty()) {
            Refuse(PlaceOf(root, "test"), "there is no test; write one with [[test]]");
        }
        std::map<std::string, CFG_Place> names;
        for (const toml::node& element : *tests) {
            const toml::table* table = element.as_table();
            if (table == nullptr) {
                Refuse(PlaceOf(element.source()), "a test must be a table: [[test]]");
            }
            SuiteTest test = TestOf(*table, suite);
            if (const auto [first, isNew] = names.emplace(test.name, test.place); !isNew) {
                Refuse(test.place, fmt::format("a test of the name '{}' stands at line {}; give each its own name",
                                               test.name, first->second.line));
            }
            suite.tests.push_back(std::move(test));
        }
    }

    SuiteTest TestOf(const toml::table& table, const Suite& suite) const
    {
        RequireKnown(table,
                     {"name", "user", "users", "address", "outcome", "values", "filter", "count", "sees", "hides"});
        SuiteTest test;
        test.name = RequiredText(table, "name");
        test.place = PlaceOf(table, "name");
        test.address = Text(table, "address").value_or("");
        test.outcome = OutcomeOf(table);
        test.filter = Text(table, "filter");
        test.count = CountOf(table);
        test.sees = Keys(table, "sees");
        test.hides = Keys(table, "hides");
        ReadValues(table, test);
        test.users = UsersOf(table, test, suite);
        if (!test.outcome && test.values.empty() && !test.filter && !test.NeedsRows()) {
            Refuse(test.place, "the test asserts nothing; add outcome, values, filter, count, sees or hides");
        }
        RequireRows(table, test, suite);
        return test;
    }

    void RequireRows(const toml::table& table, const SuiteTest& test, const Suite& suite) const
    {
        if (test.NeedsRows() && !suite.data) {
            const char* key = test.count ? "count" : !test.sees.empty() ? "sees" : "hides";
            Refuse(PlaceOf(table, key), fmt::format("'{}' needs rows; add [data]", key));
        }
        if ((!test.sees.empty() || !test.hides.empty()) && suite.data->key.empty() && suite.data->command.empty()) {
            Refuse(PlaceOf(table, test.sees.empty() ? "hides" : "sees"),
                   "single rows need the column that tells them apart; add key = \"...\" to [data]");
        }
    }

    TextList UsersOf(const toml::table& table, const SuiteTest& test, const Suite& suite) const
    {
        const std::optional<std::string> one = Text(table, "user");
        const toml::node* several = table.get("users");
        if (one.has_value() == (several != nullptr)) {
            Refuse(PlaceOf(table, one ? "users" : "name"), "a test needs either user or users");
        }
        TextList users = one ? TextList{*one} : List(*several, "users", false);
        if (users.empty()) {
            Refuse(PlaceOf(table, "users"), "the list of users is empty, so the test asserts nothing");
        }
        for (const std::string& user : users) {
            const bool isUnknown = !suite.security && suite.users.users.count(user) == 0;
            if (isUnknown && test.outcome != Outcome::unknownUser) {
                TextList known;
                for (const auto& [name, ignored] : suite.users.users) {
                    known.push_back(name);
                }
                Refuse(PlaceOf(table, one ? "user" : "users"),
                       fmt::format("there is no user '{}' in the suite; {}", user,
                                   DidYouMean(user, known,
                                              "add [users.NAME]; a test of a user whom nobody knows says "
                                              "outcome = \"default\"")));
            }
        }
        return users;
    }

    std::optional<Outcome> OutcomeOf(const toml::table& table) const
    {
        const std::optional<std::string> text = Text(table, "outcome");
        if (!text) {
            return std::nullopt;
        }
        for (const Outcome outcome :
             {Outcome::unrestricted, Outcome::restricted, Outcome::hideAll, Outcome::unknownUser}) {
            if (*text == NameOf(outcome)) {
                return outcome;
            }
        }
        Refuse(PlaceOf(table, "outcome"),
               fmt::format("there is no outcome '{}'; it is one of unrestricted, restricted, "
                           "hide-all and default",
                           *text));
    }

    std::optional<std::uint64_t> CountOf(const toml::table& table) const
    {
        const toml::node* node = table.get("count");
        if (node == nullptr) {
            return std::nullopt;
        }
        const auto* number = node->as_integer();
        if (number == nullptr || number->get() < 0) {
            Refuse(PlaceOf(node->source()), "count must be a whole number from 0");
        }
        return static_cast<std::uint64_t>(number->get());
    }

    void ReadValues(const toml::table& table, SuiteTest& test) const
    {
        const toml::table* fields = Table(table, "values");
        if (fields == nullptr) {
            return;
        }
        for (auto&& [field, node] : *fields) {
            ExpectedValues expected{
                std::string(field.str()), ExpectedValues::Kind::values, {}, PlaceOf(field.source())};
            if (const auto* word = node.as_string()) {
                if (word->get() != "all" && word->get() != "none") {
                    Refuse(PlaceOf(node.source()), fmt::format("'{0}' is neither \"all\" nor \"none\"; write a list of "
                                                               "values: [\"{0}\"]",
                                                               word->get()));
                }
                expected.kind = word->get() == "all" ? ExpectedValues::Kind::all : ExpectedValues::Kind::none;
            } else {
                const TextList values = List(node, "values", true);
                expected.values.insert(values.begin(), values.end());
            }
            test.values.push_back(std::move(expected));
        }
    }

    const std::string& file;
    const std::filesystem::path folder;
};

} // namespace

SuiteError::SuiteError(const CFG_Place& place, const std::string& text)
    : std::runtime_error(fmt::format("{}:{}:{}: {}", place.file, place.line, place.column, text))
{
}

Suite ReadSuite(const std::string& file)
{
    return SuiteReader(file).Read();
}

std::string WhyNoTest(const std::vector<Suite>& suites, const std::string& name)
{
    TextList names;
    for (const Suite& suite : suites) {
        for (const SuiteTest& test : suite.tests) {
            names.push_back(test.name);
        }
    }
    return std::find(names.begin(), names.end(), name) != names.end()
               ? std::string()
               : fmt::format("no suite has a test '{}'; {}", name, DidYouMean(name, names, "write its whole name"));
}

} // namespace secm::analysis
