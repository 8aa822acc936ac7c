// The configuration as one tree, merged from its TOML files and immutable once loaded.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace configuration {

struct Node;

/// A name of a node with what it stands for: a child node, or a value.
struct Entry {
    std::string place;          ///< "PATH:LINE:COLUMN" of the name, where it first stands.
    std::unique_ptr<Node> node; ///< Null: the name is that of a value.
    std::string value;          ///< A text as it stands, an integer in decimal.
};

struct Node {
    std::map<std::string, Entry, std::less<>> entries;
    std::vector<const std::string*> childNames; ///< Keys of `entries` that are nodes, as a reader meets them.
};

/// Reads `path`, a TOML file or a folder of them. Throws CFG_Error when anything in it cannot be taken as it
/// stands.
std::shared_ptr<const Node> LoadTree(const std::string& path);

/// What `path` (names joined by "\") leads to from `start`; null when there is nothing. The empty path and
/// one with an empty name in it lead nowhere, for no name is empty.
const Entry* FindEntry(const Node& start, std::string_view path);

} // namespace configuration
