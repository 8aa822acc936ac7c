#include "tools/acfilter/io/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace secm::acfilter {

bool HoldStandardDescriptors()
{
    bool areHeld = true;
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) == -1) {
            // open() gives the lowest free number, which is this one.
            areHeld = open("/dev/null", descriptor == STDOUT_FILENO ? O_RDONLY : O_WRONLY) == descriptor && areHeld;
        }
    }
    return areHeld;
}

bool OutputIsTerminal()
{
    return isatty(STDOUT_FILENO) != 0;
}

bool OutputTakesColours()
{
    const char* refused = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return OutputIsTerminal() && (refused == nullptr || *refused == '\0') && terminal != nullptr &&
           std::strcmp(terminal, "dumb") != 0;
}

} // namespace secm::acfilter
