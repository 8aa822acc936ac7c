#include "tools/acfilter/commands/UserSource.h"

#include "platform/security_manager/SECM_Listing.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace secm::acfilter {

void RequireUsersFrom(const std::optional<std::string>& path)
{
    if (path && path->empty()) {
        throw std::runtime_error("the path given to --users-from is empty");
    }
    if (path == "-" && (fcntl(STDIN_FILENO, F_GETFL) & O_ACCMODE) == O_WRONLY) { // closed at the start
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
        if (std::ferror(stdin) != 0) { // which std::cin takes for the end
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

void ForEachUserOfDatabase(const std::string& connectionText, unsigned timeoutSeconds, const UserHandler& handle)
{
    if (openSECM_Listing == nullptr) {
        throw std::runtime_error("the security manager in use cannot list its users; name them with --users-from");
    }
    openSECM_Listing(connectionText.c_str(), timeoutSeconds)->ForEachUser(handle);
}

} // namespace secm::acfilter
