#include "tools/acfilter/UserList.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

void ForEachLine(std::istream& lines, const std::string& place, const UserHandler& handle)
{
    std::string name;
    for (unsigned long long number = 1; std::getline(lines, name); ++number) {
        const bool hasEnd = !lines.eof();
        if (hasEnd && name.ends_with('\r')) {
            name.pop_back();
        }
        if (name.find('\0') != std::string::npos) {
            throw std::runtime_error(place + ":" + std::to_string(number) + ": a user name cannot hold a NUL byte");
        }
        if (!name.empty()) {
            handle(name);
        }
    }
    if (lines.bad()) {
        throw std::runtime_error(place + ": cannot be read: " + std::strerror(errno));
    }
}
