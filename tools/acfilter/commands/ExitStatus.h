// What a shell learns of a command.
#pragma once

namespace secm::acfilter {

enum ExitStatus : int { done = 0, failed = 1, wrongCommandLine = 2, configurationIsWrong = 3, wider = 4 };

} // namespace secm::acfilter
