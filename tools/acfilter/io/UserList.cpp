#include "tools/acfilter/io/UserList.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace secm::acfilter {

void ForEachLine(std::istream& lines, const std::string& place, const UserHandler& handle)
{
    constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
    std::string name;
    for (unsigned long long number = 1; std::getline(lines, name); ++number) {
        const auto refuse = [&](const char* why) {
            throw std::runtime_error(place + ":" + std::to_string(number) + ": " + why);
        };
        const bool hasEnd = !lines.eof();
        if (hasEnd && name.ends_with('\r')) {
            name.pop_back();
        }
        if (number == 1 && name.starts_with(byteOrderMark)) {
            name.erase(0, byteOrderMark.size());
        }
        if (name.find('\0') != std::string::npos) {
            refuse("a user name cannot hold a NUL byte; write the list in UTF-8");
        }
        if (name.find('\r') != std::string::npos) {
            refuse("a carriage return ends no line here; end each line with LF or CR LF");
        }
        if (!name.empty()) {
            handle(name);
        }
    }
    if (lines.bad()) {
        throw std::runtime_error(place + ": cannot be read: " + std::strerror(errno));
    }
}

} // namespace secm::acfilter
