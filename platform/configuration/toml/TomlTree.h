// The configuration as one tree, merged from its TOML files and immutable once loaded.
#pragma once

#include "platform/configuration/CFG_Candidate.h"

#include <compare>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

namespace secm::platform {

struct Node;

/// The place of a name; places sort in the order in which the files are read.
struct Place {
    unsigned file = 0; ///< Index of the file in Tree::files.
    unsigned line = 1;
    unsigned column = 1;

    auto operator<=>(const Place&) const = default;
};

/// A name with its child node or its value. A NUL follows each text. The texts and nodes are in the tree's memory.
struct Entry {
    explicit Entry(std::string_view named) : name(named) {}

    std::string_view name;
    Place place;            ///< Of the first occurrence of the name.
    Node* node = nullptr;   ///< Null: the entry is a value.
    std::string_view value; ///< A text as it is written, an integer in decimal.
};

struct Node {
    explicit Node(std::pmr::memory_resource& memory) : entries(&memory), childNames(&memory) {}

    std::pmr::vector<Entry> entries;          ///< Sorted by name.
    std::pmr::vector<const char*> childNames; ///< Of the entries that are nodes, in the order of the files.
};

/// Every CFG_Candidate of this library is a Tree. Large configurations have hundreds of thousands of nodes and texts,
/// so all of them are in one arena, which is freed as a whole: apart from the root, no node is destroyed.
struct Tree final : CFG_Candidate {
    const std::vector<std::string>& Files() const override { return files; }

    std::pmr::monotonic_buffer_resource memory{std::pmr::new_delete_resource()}; // whatever the host's default is
    std::vector<std::string> files;
    Node root{memory};
};

/// Reads `path`, a TOML file or a folder of them, and calls `observe`, when given, for each file before it is parsed.
/// Throws CFG_Error when a file cannot be read or holds anything that is no part of a configuration.
std::shared_ptr<const Tree> LoadTree(const std::string& path, const CFG_FileObserver& observe);

/// The entry of `node` named `name`; null when there is none.
const Entry* FindName(const Node& node, std::string_view name);

/// The entry at `path` (names joined by "\"), beginning at `start`; null when there is none. The empty path and one
/// with an empty name in it have no entry, because no name is empty.
const Entry* FindEntry(const Node& start, std::string_view path);

} // namespace secm::platform
