#include "tools/acfilter/Progress.h"

#include <unistd.h>

#include <cstdio>

namespace {

constexpr std::chrono::milliseconds updateInterval(100);

} // namespace

Progress::Progress()
    : isWanted(isatty(STDERR_FILENO) != 0 && isatty(STDOUT_FILENO) == 0),
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
        std::fprintf(stderr, "\racfilter: %llu users", count);
        isShown = true;
        nextUpdate = now + updateInterval;
    }
}
