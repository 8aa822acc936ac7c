#include "tools/acfilter/cli/Arguments.h"

#include <algorithm>

namespace secm::acfilter {

namespace {

// No argument of a process can hold it.
constexpr char mark = '\0';

} // namespace

std::vector<std::string> MarkedArguments(int argc, const char* const* argv,
                                         const std::function<bool(const std::string& optionName)>& takesValue)
{
    std::vector<std::string> arguments;
    bool onlyNamesFollow = false;
    for (int index = 1; index < argc; ++index) {
        const std::string argument = argv[index];
        const std::string beforeEnd = argument.substr(0, argument.empty() ? 0 : argument.size() - 1);
        const bool isBracketed = argument.starts_with('[') && argument.ends_with(']');
        if (onlyNamesFollow || isBracketed || argument == "++") {
            arguments.push_back(mark + argument);
        } else if (argument == "--") {
            onlyNamesFollow = true;
        } else if (argument.starts_with('-') && argument.ends_with('=') && takesValue(beforeEnd)) {
            arguments.insert(arguments.end(), {beforeEnd, std::string(1, mark)});
        } else {
            arguments.push_back(argument);
        }
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

void RemoveMark(std::string& argument)
{
    if (argument.starts_with(mark)) {
        argument.erase(0, 1);
    }
}

} // namespace secm::acfilter
