// The configuration as one tree, merged from its TOML files and immutable once loaded.
#pragma once

#include <compare>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

namespace configuration {

struct Node;

/// Of a name; places sort in the order in which the files are read.
struct Place {
    unsigned file = 0; ///< Its number in the tree's list.
    unsigned line = 1;
    unsigned column = 1;

    auto operator<=>(const Place&) const = default;
};

/// A name of a node with what it stands for: a child node, or a value. Texts have a NUL behind them.
struct Entry {
    explicit Entry(std::string_view named) : name(named) {}

    std::string_view name;
    Place place;            ///< Where the name first stands.
    Node* node = nullptr;   ///< Null: the name is that of a value.
    std::string_view value; ///< A text as it stands, an integer in decimal.
};

struct Node {
    explicit Node(std::pmr::memory_resource& memory) : entries(&memory), childNames(&memory) {}

    std::pmr::vector<Entry> entries;          ///< Sorted by name.
    std::pmr::vector<const char*> childNames; ///< Of the entries that are nodes, as a reader meets them.
};

/// Large configurations are hundreds of thousands of nodes and texts. All are in the tree's memory, which goes as a
/// whole: no node is destroyed one by one, but for the root.
struct Tree {
    std::pmr::monotonic_buffer_resource memory{std::pmr::new_delete_resource()}; // not what a host makes the default
    std::vector<std::string> files; ///< As their names were given or found.
    Node root{memory};
};

/// Reads `path`, a TOML file or a folder of them. Throws CFG_Error when anything in it cannot be taken as it
/// stands.
std::shared_ptr<const Tree> LoadTree(const std::string& path);

/// The entry of `node` named `name`; null when there is none.
const Entry* FindName(const Node& node, std::string_view name);

/// What `path` (names joined by "\") leads to from `start`; null when there is nothing. The empty path and
/// one with an empty name in it lead nowhere, for no name is empty.
const Entry* FindEntry(const Node& start, std::string_view path);

} // namespace configuration
