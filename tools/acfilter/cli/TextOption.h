// Options whose text is taken as it was typed. CLI11 would take a user called [a,b] for two users, pass over one called
// ++, refuse a name that begins with "-" when other names stand before the "--", and take what follows "--ip=" for its
// value.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <type_traits>
#include <vector>

namespace secm::acfilter {

/// The command line in the form that `app` parses, with the texts in question marked so that they are none of its
/// business.
std::vector<std::string> MarkedArguments(const CLI::App& app, int argc, const char* const* argv);

/// Takes the mark off.
std::string WithoutMark(std::string& text);

/// Adds an option with a value, which must live until the option has been parsed.
template <class Value>
CLI::Option* AddOption(CLI::App& command, const std::string& name, Value& value, const std::string& help)
{
    CLI::Option* option = command.add_option(name, value, help)->transform(CLI::Validator(WithoutMark, ""));
    if constexpr (std::is_convertible_v<int, Value>) { // an empty text would be taken for 0
        option->check([](const std::string& text) { return text.empty() ? "a number is missing" : std::string(); });
    }
    return option;
}

} // namespace secm::acfilter
