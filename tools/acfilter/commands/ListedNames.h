// The user names of one security database, to tell which names of another one are among them.
#pragma once

#include "tools/acfilter/io/TemporaryLines.h"

#include <optional>
#include <string>

namespace secm::acfilter {

/// Keeps the names in a temporary file, so memory does not grow with their number. Both lists must be in the byte-wise
/// order of the names, which is how security databases list them. Each operation throws std::runtime_error when the
/// file cannot be used.
class ListedNames {
public:
    /// Keeps `name`. All names are added before the first Holds.
    void Add(const std::string& name);

    /// Whether `name` was added. No value: that is not known, because the names of one of the two lists did not come in
    /// their order, or because `name` holds a line end.
    std::optional<bool> Holds(const std::string& name);

private:
    TemporaryLines lines{""};
    bool isOrdered = true;
    std::optional<std::string> lastAdded;
    std::optional<std::string> lastAsked;
    std::optional<std::string> next; // the first name of the file that is not before lastAsked; no value: none is read
    bool isAtEnd = false;
};

} // namespace secm::acfilter
