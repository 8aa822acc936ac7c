// The entries of a configuration with their places, for tools that check it as a whole. The module does not use this,
// so a configuration library of a host's own may leave it out.
#pragma once

#include "platform/Export.h"
#include "platform/configuration/RWCString.h"

#include <compare>
#include <string>
#include <vector>

/// The place of a name; lines and columns count from 1. Places sort in the order in which the files are read.
struct CFG_Place {
    std::string file;
    unsigned line = 1;
    unsigned column = 1;

    auto operator<=>(const CFG_Place&) const = default;
};

/// A child node or a value directly under a node.
struct CFG_Entry {
    std::string name;
    bool isNode = false;
    std::string value; ///< Empty for a node. A text as it is written, an integer in decimal.
    CFG_Place place;   ///< Of the first occurrence of the name.
};

/// The entries directly under the node at `path`, sorted by place; empty when there is no such node or no
/// configuration. They are of the configuration that CFG_Factory::GetRepositoryServices gives on this thread. Throws
/// CFG_Error as that does. Any thread may call. A weak symbol: null where the configuration library does not offer it.
PLATFORM_EXPORT __attribute__((weak)) std::vector<CFG_Entry> CFG_ListEntries(const RWCString& path);
