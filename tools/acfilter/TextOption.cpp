#include "tools/acfilter/TextOption.h"

#include <algorithm>

namespace {

// No argument of a process can hold it.
constexpr char mark = '\0';

} // namespace

std::vector<std::string> MarkedArguments(int argc, const char* const* argv)
{
    std::vector<std::string> arguments;
    bool onlyNamesFollow = false;
    for (int index = 1; index < argc; ++index) {
        const std::string argument = argv[index];
        if (argument == "--" && !onlyNamesFollow) {
            onlyNamesFollow = true;
        } else if (onlyNamesFollow || (argument.starts_with('[') && argument.ends_with(']'))) {
            arguments.push_back(mark + argument);
        } else {
            arguments.push_back(argument);
        }
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

std::string WithoutMark(std::string& text)
{
    if (text.starts_with(mark)) {
        text.erase(0, 1);
    }
    return {}; // no objection
}
