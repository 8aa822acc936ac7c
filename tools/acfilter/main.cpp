// The command line: parses and dispatches.
#include "tools/acfilter/FilterCommand.h"
#include "tools/acfilter/TextOption.h"

#include <CLI/CLI.hpp>

#include <array>
#include <cstdio>
#include <exception>
#include <string>

namespace {

enum ExitStatus : int { done = 0, failed = 1, wrongCommandLine = 2 };

// One line, whatever names the message quotes: control characters are shown and never sent to the terminal.
std::string Message(const char* text)
{
    std::string message = "acfilter: ";
    for (; *text != '\0'; ++text) {
        const auto byte = static_cast<unsigned char>(*text);
        if (byte < 0x20 || byte == 0x7f) {
            std::array<char, 5> escaped{};
            std::snprintf(escaped.data(), escaped.size(), "\\x%02x", static_cast<unsigned>(byte));
            message += escaped.data();
        } else {
            message += *text;
        }
    }
    return message + "\n";
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app("Access-control filters, user by user", "acfilter");
    app.set_version_flag("--version", "acfilter " ACFILTER_VERSION);
    app.require_subcommand(1);
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return Message(error.what()) + "Run with --help for more information.\n";
    });
    AddFilterCommand(app);

    const auto isNamed = [&](const CLI::App* command) { return command->check_name(argv[1]); };
    if (argc > 1 && argv[1][0] != '-' && app.get_subcommands(isNamed).empty()) {
        const std::string message = std::string("there is no command '") + argv[1] + "'; see acfilter --help";
        std::fputs(Message(message.c_str()).c_str(), stderr);
        return wrongCommandLine;
    }
    try {
        app.parse(MarkedArguments(app, argc, argv));
    } catch (const CLI::Success& request) {
        return app.exit(request); // --help, --version
    } catch (const CLI::ParseError& error) {
        app.exit(error);
        return wrongCommandLine;
    } catch (const std::exception& error) {
        std::fflush(stdout); // what was answered stands, and comes before the failure
        std::fputs(Message(error.what()).c_str(), stderr);
        return failed;
    }
    return done;
}
