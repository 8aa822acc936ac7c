// The errors that several commands report in the same words.
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

/// The end of a message for std::bad_alloc; its beginning says what was being done.
inline constexpr const char* memoryRanOut =
    "memory ran out; raise the limit (ulimit -v, or that of the service or container), or free some on this machine";

/// Gives the result of `ask`. Adds the user's name to the std::runtime_error that it throws, and throws one in place of
/// std::bad_alloc.
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
