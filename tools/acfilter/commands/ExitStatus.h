// The exit statuses of all commands.
#pragma once

namespace secm::acfilter {

enum class ExitStatus : int {
    success = 0,
    failure = 1,
    wrongCommandLine = 2,
    rulesAreWrong = 3,   ///< `check` found an error, or rows show one (see RunReport).
    somebodySeesMore = 4 ///< `diff` found a user who does or, with --strict, one of whom it is not known.
};

} // namespace secm::acfilter
