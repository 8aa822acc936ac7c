// The errors that several commands report alike.
#pragma once

#include <new>
#include <stdexcept>
#include <string>

namespace secm::acfilter {

/// The command line is wrong in a way that only the command can tell. The text says what is wrong.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The message for std::bad_alloc. Put before it what was being done.
inline constexpr const char* memoryRanOut =
    "memory ran out; raise the limit (ulimit -v, or that of the service or container), or free some on this machine";

/// Runs `ask`; a failure names the user.
template <class Ask>
auto AskFor(const std::string& userName, Ask ask)
{
    try {
        return ask();
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("user '" + userName + "': " + error.what());
    } catch (const std::bad_alloc&) {
        throw std::runtime_error("user '" + userName + "': " + memoryRanOut);
    }
}

} // namespace secm::acfilter
