// Hides some arguments from the option parser. It would take a user called [a,b] for two users, pass over one called
// ++, refuse a name that begins with "-" when other names stand before the "--", and take what follows "--ip=" for its
// value.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace secm::acfilter {

/// The arguments of a process without its name, the last one first. Those that must not be interpreted are marked.
/// `takesValue` tells whether an option of that name takes a value.
std::vector<std::string> MarkedArguments(int argc, const char* const* argv,
                                         const std::function<bool(const std::string& optionName)>& takesValue);

/// Takes the mark off, where there is one.
void RemoveMark(std::string& argument);

} // namespace secm::acfilter
