#include "tools/acfilter/io/UserList.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
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

void RequireStandardInput()
{
    if ((fcntl(STDIN_FILENO, F_GETFL) & O_ACCMODE) == O_WRONLY) { // as HoldStandardDescriptors opens it
        throw std::runtime_error(std::string("standard input: cannot be read: ") + std::strerror(EBADF));
    }
}

void ForEachUserOfFile(const std::string& path, const UserHandler& handle)
{
    const bool isStandardInput = path == "-";
    const std::string place = isStandardInput ? "standard input" : path;
    bool namesSomebody = false;
    const auto notice = [&](const std::string& userName) {
        namesSomebody = true;
        handle(userName);
    };
    if (isStandardInput) {
        ForEachLine(std::cin, place, notice);
        if (std::ferror(stdin) != 0) { // std::cin reports a failed read as the end
            throw std::runtime_error(place + ": cannot be read: " + std::strerror(errno));
        }
    } else {
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            throw std::runtime_error(path + ": cannot be opened: " + std::strerror(errno));
        }
        ForEachLine(file, place, notice);
    }
    if (!namesSomebody) {
        throw std::runtime_error(place + ": names no user, so nobody was asked for; write one name a line");
    }
}

} // namespace secm::acfilter
