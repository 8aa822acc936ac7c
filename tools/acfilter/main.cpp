// The command line: parses and dispatches.
#include "tools/acfilter/FilterCommand.h"
#include "tools/acfilter/TextOption.h"

#include <cstdio>
#include <exception>
#include <string>

namespace {

enum ExitStatus : int { done = 0, failed = 1, wrongCommandLine = 2 };

} // namespace

int main(int argc, char** argv)
{
    CLI::App app("Access-control filters, user by user", "acfilter");
    app.set_version_flag("--version", "acfilter " ACFILTER_VERSION);
    app.require_subcommand(1);
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return std::string("acfilter: ") + error.what() + "\nRun with --help for more information.\n";
    });
    AddFilterCommand(app);

    try {
        app.parse(MarkedArguments(argc, argv));
    } catch (const CLI::Success& request) {
        return app.exit(request); // --help, --version
    } catch (const CLI::ParseError& error) {
        app.exit(error);
        return wrongCommandLine;
    } catch (const std::exception& error) {
        std::fflush(stdout); // what was answered stands, and comes before the failure
        std::fprintf(stderr, "acfilter: %s\n", error.what());
        return failed;
    }
    return done;
}
