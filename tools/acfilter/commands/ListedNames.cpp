#include "tools/acfilter/commands/ListedNames.h"

namespace secm::acfilter {

void ListedNames::Add(const std::string& name)
{
    isOrdered = isOrdered && (!lastAdded || *lastAdded < name);
    lastAdded = name;
    if (name.find('\n') == std::string::npos) {
        lines.Write(name + "\n");
    }
}

std::optional<bool> ListedNames::Holds(const std::string& name)
{
    isOrdered = isOrdered && (!lastAsked || *lastAsked < name);
    lastAsked = name;
    if (!isOrdered || name.find('\n') != std::string::npos) {
        return std::nullopt;
    }
    while (!isAtEnd && (!next || *next < name)) {
        isAtEnd = !lines.Read(next.emplace());
    }
    return !isAtEnd && *next == name;
}

} // namespace secm::acfilter
