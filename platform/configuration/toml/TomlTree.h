// The configuration as one tree, merged from its TOML files and immutable once loaded.
#pragma once

#include <compare>
#include <map>
#include <memory>
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

/// A name of a node with what it stands for: a child node, or a value.
struct Entry {
    Place place;                ///< Where the name first stands.
    std::unique_ptr<Node> node; ///< Null: the name is that of a value.
    std::string value;          ///< A text as it stands, an integer in decimal.
};

struct Node {
    std::map<std::string, Entry, std::less<>> entries;
    std::vector<const std::string*> childNames; ///< Keys of `entries` that are nodes, as a reader meets them.
};

struct Tree {
    std::vector<std::string> files; ///< As their names were given or found.
    Node root;
};

/// Reads `path`, a TOML file or a folder of them. Throws CFG_Error when anything in it cannot be taken as it
/// stands.
std::shared_ptr<const Tree> LoadTree(const std::string& path);

/// What `path` (names joined by "\") leads to from `start`; null when there is nothing. The empty path and
/// one with an empty name in it lead nowhere, for no name is empty.
const Entry* FindEntry(const Node& start, std::string_view path);

} // namespace configuration
