// Runs the command line and reports what failed.
#include "tools/acfilter/cli/CommandLine.h"
#include "tools/acfilter/cli/Message.h"
#include "tools/acfilter/commands/Errors.h"
#include "tools/acfilter/io/StandardStreams.h"

#include <cstdio>
#include <exception>
#include <new>

namespace secm::acfilter {
namespace {

ExitStatus Main(int argc, const char* const* argv)
{
    if (!HoldStandardDescriptors()) {
        std::fputs("acfilter: /dev/null cannot be opened in place of a closed descriptor\n", stderr);
        return ExitStatus::failure;
    }
    try {
        return RunCommandLine(argc, argv);
    } catch (const UsageError& error) {
        std::fputs((Message(error.what()) + "Run with --help for more information.\n").c_str(), stderr);
        return ExitStatus::wrongCommandLine;
    } catch (const std::bad_alloc&) { // nothing here may allocate
        std::fflush(stdout);
        std::fprintf(stderr, "acfilter: %s: %s\n", argc > 1 && argv[1][0] != '-' ? argv[1] : "command line",
                     memoryRanOut);
    } catch (const std::exception& error) {
        std::fflush(stdout); // what was answered stands, and comes before the failure
        std::fputs(Message(error.what()).c_str(), stderr);
    }
    return ExitStatus::failure;
}

} // namespace
} // namespace secm::acfilter

int main(int argc, char** argv)
{
    return static_cast<int>(secm::acfilter::Main(argc, argv));
}
