// The command line: parses and dispatches.
#include "platform/Version.h"
#include "tools/acfilter/cli/TextOption.h"
#include "tools/acfilter/commands/CheckCommand.h"
#include "tools/acfilter/commands/DiffCommand.h"
#include "tools/acfilter/commands/ExitStatus.h"
#include "tools/acfilter/commands/ExplainCommand.h"
#include "tools/acfilter/commands/FilterCommand.h"
#include "tools/acfilter/commands/HostOptions.h"
#include "tools/acfilter/commands/ReportCommand.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/StandardStreams.h"
#include "tools/acfilter/render/Printable.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <new>
#include <sstream>
#include <string>

namespace secm::acfilter {
namespace {

// One line, whatever names the message quotes.
std::string Message(const std::string& text)
{
    return "acfilter: " + Printable(text) + "\n";
}

// What --help or --version asks for.
void PrintAnswer(const CLI::App& app, const CLI::Success& request)
{
    std::ostringstream answer;
    app.exit(request, answer);
    OutputFile output(std::nullopt);
    output.Write(answer.str());
    output.Finish();
}

int Run(int argc, char** argv)
{
    CLI::App app("Access-control filters, user by user", "acfilter");
    app.set_version_flag("--version", std::string("acfilter ") + secm::version);
    app.require_subcommand(1);
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return Message(error.what()) + "Run with --help for more information.\n";
    });
    ExitStatus status = done;
    AddFilterCommand(app);
    AddExplainCommand(app);
    AddCheckCommand(app, status);
    AddReportCommand(app);
    AddDiffCommand(app, status);

    const auto isNamed = [&](const CLI::App* command) { return command->check_name(argv[1]); };
    if (argc > 1 && argv[1][0] != '-' && app.get_subcommands(isNamed).empty()) {
        const std::string message = std::string("there is no command '") + argv[1] + "'; see acfilter --help";
        std::fputs(Message(message).c_str(), stderr);
        return wrongCommandLine;
    }
    try {
        app.parse(MarkedArguments(app, argc, argv));
    } catch (const CLI::Success& request) {
        PrintAnswer(app, request);
    } catch (const CLI::ParseError& error) {
        app.exit(error);
        return wrongCommandLine;
    }
    return status;
}

} // namespace

int Main(int argc, char** argv)
{
    if (!HoldStandardDescriptors()) {
        std::fputs("acfilter: /dev/null cannot be opened in place of a closed descriptor\n", stderr);
        return failed;
    }
    try {
        return Run(argc, argv);
    } catch (const std::bad_alloc&) { // nothing here may allocate
        std::fflush(stdout);
        std::fprintf(stderr, "acfilter: %s: %s\n", argc > 1 && argv[1][0] != '-' ? argv[1] : "command line",
                     memoryRanOut);
    } catch (const std::exception& error) {
        std::fflush(stdout); // what was answered stands, and comes before the failure
        std::fputs(Message(error.what()).c_str(), stderr);
    }
    return failed;
}

} // namespace secm::acfilter

int main(int argc, char** argv)
{
    return secm::acfilter::Main(argc, argv);
}
