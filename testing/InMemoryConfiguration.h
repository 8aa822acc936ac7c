// A configuration that is looked up by whole paths, so that it may hold what no file could.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace secm::testing {

struct Configuration {
    /// Adds a value and the nodes above it; a path that ends in "\" adds a node.
    void Add(const std::string& path, const std::string& value);

    bool exists = true; ///< Else there are no repository services.
    /// The names of the child nodes, by the node's path; none: the node gives no list of them.
    std::map<std::string, std::optional<std::vector<std::string>>> nodes;
    std::map<std::string, std::string> values; ///< By path. An integer is one in decimal.
};

} // namespace secm::testing
