#include "tools/acfilter/io/Progress.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace secm::acfilter {

namespace {

constexpr std::chrono::milliseconds updateInterval(100);

bool OutputIsFile()
{
    struct stat output {};
    return fstat(STDOUT_FILENO, &output) == 0 && S_ISREG(output.st_mode);
}

} // namespace

Progress::Progress(bool answersAppear, const char* unit)
    : isWanted(isatty(STDERR_FILENO) != 0 && (!answersAppear || OutputIsFile())), countedUnit(unit),
      nextUpdate(std::chrono::steady_clock::now() + updateInterval)
{
}

Progress::~Progress()
{
    if (isShown) {
        std::fputs("\r\033[K", stderr);
    }
}

void Progress::CountOne()
{
    ++count;
    if (!isWanted) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (now >= nextUpdate) {
        std::fprintf(stderr, "\racfilter: %llu %s", count, countedUnit);
        isShown = true;
        nextUpdate = now + updateInterval;
    }
}

} // namespace secm::acfilter
