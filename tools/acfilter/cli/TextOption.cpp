#include "tools/acfilter/cli/TextOption.h"

#include <algorithm>

namespace secm::acfilter {

namespace {

// No argument of a process can hold it.
constexpr char mark = '\0';

bool TakesValue(const CLI::App& app, const std::string& optionName)
{
    const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
    return std::any_of(commands.begin(), commands.end(), [&](const CLI::App* command) {
        const CLI::Option* option = command->get_option_no_throw(optionName);
        return option != nullptr && option->get_items_expected_max() > 0;
    });
}

} // namespace

std::vector<std::string> MarkedArguments(const CLI::App& app, int argc, const char* const* argv)
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
        } else if (argument.starts_with('-') && argument.ends_with('=') && TakesValue(app, beforeEnd)) {
            arguments.insert(arguments.end(), {beforeEnd, std::string(1, mark)});
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

} // namespace secm::acfilter
