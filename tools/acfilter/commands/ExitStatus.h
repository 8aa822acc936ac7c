// What a shell learns of a command.
#pragma once

namespace secm::acfilter {

enum class ExitStatus : int {
    success = 0,
    failure = 1,
    wrongCommandLine = 2,
    configurationIsWrong = 3, ///< `check` found an error.
    somebodySeesMore = 4      ///< `diff` found a user who does, or cannot tell and was asked to be strict.
};

} // namespace secm::acfilter
