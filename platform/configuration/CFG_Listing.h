// For tools that look at a configuration as a whole, and name the place of what they find. The module needs none of it,
// so a configuration library of a host's own may leave it out.
#pragma once

#include "platform/Export.h"
#include "platform/configuration/RWCString.h"

#include <compare>
#include <string>
#include <vector>

/// Where a name stands; lines and columns count from 1. Places sort in the order in which the files are read.
struct CFG_Place {
    std::string file;
    unsigned line = 1;
    unsigned column = 1;

    auto operator<=>(const CFG_Place&) const = default;
};

/// A name directly under a node, that of a child node or of a value.
struct CFG_Entry {
    std::string name;
    bool isNode = false;
    std::string value; ///< Of a value: a text as it stands, an integer in decimal.
    CFG_Place place;   ///< Of the name, where it first stands.
};

/// What stands directly under the node at `path` of the configuration in force, by place; empty when there is no such
/// node or no configuration. Throws CFG_Error as CFG_Factory::GetRepositoryServices does. Any thread may call. Null
/// where the configuration library does not offer it.
PLATFORM_EXPORT __attribute__((weak)) std::vector<CFG_Entry> CFG_ListEntries(const RWCString& path);
