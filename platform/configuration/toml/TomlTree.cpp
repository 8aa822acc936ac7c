// Merges the tables that toml++ reads into one tree, in the order in which an administrator wrote them. toml++ sorts
// its tables by name, so the order is taken from the places of the keys. A value of another type than text or integer
// is refused with its place: a setting that is ignored could let users see more.
#include "platform/configuration/toml/TomlTree.h"

#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/toml/ConfigurationFiles.h"
#include "platform/configuration/toml/Nesting.h"
#include "platform/configuration/toml/SyntaxAdvice.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <span>
#include <utility>

namespace secm::platform {
namespace {

constexpr std::int64_t smallestInteger = -2147483648LL;
constexpr std::int64_t largestInteger = 4294967295LL;

// The only key whose value is a number to its reader.
constexpr std::string_view numberKey = "permission_value";

// Far more than the longest path that is read, and far less than would exhaust the stack.
constexpr unsigned deepestName = 200;

// The entry named `name` among entries sorted by name; null when there is none.
template <class EntryType>
EntryType* Find(std::span<EntryType> entries, std::string_view name)
{
    const auto found =
        std::lower_bound(entries.begin(), entries.end(), name,
                         [](const Entry& entry, std::string_view sought) { return entry.name < sought; });
    return found != entries.end() && found->name == name ? &*found : nullptr;
}

const char* KindOf(const toml::node& node)
{
    switch (node.type()) {
    case toml::node_type::array:
        return "an array";
    case toml::node_type::floating_point:
        return "a floating-point number";
    case toml::node_type::boolean:
        return "a boolean";
    default:
        return "a date or time";
    }
}

// Merges one file into the tree.
class FileMerge {
public:
    FileMerge(Tree& intoTree, const std::string& path) : tree(intoTree), file(static_cast<unsigned>(tree.files.size()))
    {
        tree.files.push_back(path);
    }

    void Run(const CFG_FileObserver& observe)
    {
        const std::string& path = tree.files[file];
        const std::string content = ReadFile(path);
        if (observe) {
            observe(path, content);
        }
        if (const auto position = FindTooDeep(content, deepestName)) {
            Refuse({file, position->line, position->column},
                   fmt::format("tables are nested more than {} deep; shorten the path", deepestName));
        }
        try {
            Merge(tree.root, toml::parse(content));
        } catch (const toml::parse_error& error) {
            RefuseSyntax(content, error);
        }
    }

private:
    // A key of a table with the entry that it is merged into.
    struct Item {
        const toml::key* key;
        const toml::node* value;
        Entry* entry;
        bool isNew;

        // By place.
        bool operator<(const Item& other) const { return key->source().begin < other.key->source().begin; }
    };

    void Merge(Node& node, const toml::table& table)
    {
        const std::size_t earlier = node.entries.size();
        const std::size_t first = items.size();
        AddItems(node.entries, table);
        for (std::size_t index = first, end = items.size(); index < end; ++index) {
            const Item item = items[index]; // a copy: merging a table appends to `items`
            MergeItem(node, item);
        }
        items.resize(first);
        std::inplace_merge(node.entries.begin(), node.entries.begin() + static_cast<std::ptrdiff_t>(earlier),
                           node.entries.end(),
                           [](const Entry& left, const Entry& right) { return left.name < right.name; });
    }

    // Appends the items of `table`, in the order of the file. Appends an empty entry for each new name; the new entries
    // are sorted among themselves.
    void AddItems(std::pmr::vector<Entry>& entries, const toml::table& table)
    {
        const auto first = static_cast<std::ptrdiff_t>(items.size());
        MakeRoom(entries, table.size()); // items point to entries, so entries must not move
        const std::span earlier(entries.data(), entries.size());
        for (auto&& [key, value] : table) { // sorted by name
            Entry* found = Find(earlier, key.str());
            Entry* entry = found != nullptr ? found : &entries.emplace_back(Keep(key.str()));
            items.push_back({&key, &value, entry, found == nullptr});
        }
        if (!std::is_sorted(items.begin() + first, items.end())) {
            std::sort(items.begin() + first, items.end());
        }
    }

    void MergeItem(Node& node, const Item& item)
    {
        const Place place = PlaceOf(item.key->source().begin);
        Entry& entry = *item.entry;
        CheckName(entry.name, place);
        const toml::table* child = item.value->as_table();
        if (item.isNew) {
            entry.place = place;
            if (child != nullptr) {
                entry.node = new (tree.memory.allocate(sizeof(Node), alignof(Node))) Node(tree.memory);
                node.childNames.push_back(entry.name.data());
            } else {
                entry.value = ValueOf(*item.value, entry.name, place);
            }
        } else if (child == nullptr || entry.node == nullptr) {
            Refuse(place, fmt::format("'{}' is {} here and {} already at {}; remove or rename one of the two",
                                      entry.name, child != nullptr ? "a table" : "a value",
                                      entry.node != nullptr ? "a table" : "a value", TextOf(entry.place)));
        }
        if (child != nullptr) {
            Merge(*entry.node, *child);
        }
    }

    // Reserves what one file needs, and grows geometrically when many files add to a node.
    static void MakeRoom(std::pmr::vector<Entry>& entries, std::size_t more)
    {
        if (const std::size_t size = entries.size() + more; size > entries.capacity()) {
            entries.reserve(std::max(size, 2 * entries.size()));
        }
    }

    // A copy in the tree's memory, followed by a NUL.
    std::string_view Keep(std::string_view text)
    {
        char* copy = static_cast<char*>(tree.memory.allocate(text.size() + 1, 1));
        *std::copy(text.begin(), text.end(), copy) = '\0';
        return {copy, text.size()};
    }

    [[noreturn]] void RefuseSyntax(const std::string& content, const toml::parse_error& error) const
    {
        const Place noticed = PlaceOf(error.source().begin);
        const SyntaxAdvice advice = AdviceOn(content, {noticed.line, noticed.column}, error.description());
        const Place place = advice.position ? Place{file, advice.position->line, advice.position->column} : noticed;
        const std::string problem = advice.problem.empty() ? std::string(error.description()) : advice.problem;
        Refuse(place, advice.remedy.empty() ? problem : problem + "; " + advice.remedy);
    }

    [[noreturn]] void Refuse(const Place& place, const std::string& why) const
    {
        throw CFG_Error(fmt::format("{}: {}", TextOf(place), why));
    }

    Place PlaceOf(const toml::source_position& position) const
    {
        return {file, std::max(position.line, 1U), std::max(position.column, 1U)};
    }

    std::string TextOf(const Place& place) const
    {
        return fmt::format("{}:{}:{}", tree.files[place.file], place.line, place.column);
    }

    void CheckName(std::string_view name, const Place& place) const
    {
        if (name.empty()) {
            Refuse(place, "a name must not be empty");
        }
        if (name.find('\\') != std::string::npos || name.find('\0') != std::string::npos) {
            Refuse(place, fmt::format("the name '{}' must contain neither a backslash nor a NUL",
                                      name.substr(0, name.find('\0'))));
        }
    }

    std::string_view ValueOf(const toml::node& node, std::string_view name, const Place& place)
    {
        if (const auto* text = node.as_string()) {
            return Keep(text->get());
        }
        const auto* integer = node.as_integer();
        if (integer == nullptr) {
            const bool isNumber = name == numberKey;
            Refuse(place, fmt::format("'{}' must be {}, found {}; {}", name,
                                      isNumber ? "a whole number" : "a text or a whole number", KindOf(node),
                                      isNumber                    ? "write it without quotes, such as 1"
                                      : node.is_array_of_tables() ? "write the table's name between single brackets"
                                      : node.is_array()           ? "write one text between quotes, with commas in it "
                                                                    "where tokens are listed"
                                                                  : "write it between quotes"));
        }
        if (integer->get() < smallestInteger || integer->get() > largestInteger) {
            Refuse(place, fmt::format("'{}' must be from {} to {}, found {}", name, smallestInteger, largestInteger,
                                      integer->get()));
        }
        return Keep(std::to_string(integer->get()));
    }

    Tree& tree;
    unsigned file;
    std::vector<Item> items; // of the tables that are being merged, the innermost table's last
};

} // namespace

std::shared_ptr<const Tree> LoadTree(const std::string& path, const CFG_FileObserver& observe)
{
    auto tree = std::make_shared<Tree>();
    for (const std::string& file : FindFiles(path)) {
        FileMerge(*tree, file).Run(observe);
    }
    return tree;
}

const Entry* FindName(const Node& node, std::string_view name)
{
    return Find(std::span(node.entries), name);
}

const Entry* FindEntry(const Node& start, std::string_view path)
{
    const Node* node = &start;
    for (;;) {
        const std::size_t end = path.find('\\');
        const Entry* found = FindName(*node, path.substr(0, end));
        if (found == nullptr || end == std::string_view::npos) {
            return found;
        }
        node = found->node;
        if (node == nullptr) {
            return nullptr;
        }
        path.remove_prefix(end + 1);
    }
}

} // namespace secm::platform
