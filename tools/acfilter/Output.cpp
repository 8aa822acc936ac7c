#include "tools/acfilter/Output.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

[[noreturn]] void RefuseToGoOn()
{
    throw std::runtime_error(std::string("standard output cannot be written: ") + std::strerror(errno));
}

} // namespace

void Print(const std::string& text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        RefuseToGoOn();
    }
}

void FlushOutput()
{
    if (std::fflush(stdout) != 0) {
        RefuseToGoOn();
    }
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
