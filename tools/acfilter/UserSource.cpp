#include "tools/acfilter/UserSource.h"

#include "platform/security_manager/SECM_Listing.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <stdexcept>

void RequireUsersFrom(const std::optional<std::string>& path)
{
    if (path && path->empty()) {
        throw std::runtime_error("the path given to --users-from is empty");
    }
    // Closed, its number would go to the next file that is opened, and that would be read for users.
    if (path == "-" && fcntl(STDIN_FILENO, F_GETFD) == -1) {
        throw std::runtime_error(std::string("standard input: cannot be read: ") + std::strerror(errno));
    }
}

void ForEachUserOfFile(const std::string& path, const UserHandler& handle)
{
    if (path == "-") {
        ForEachLine(std::cin, "standard input", handle);
        if (std::ferror(stdin) != 0) { // which std::cin takes for the end
            throw std::runtime_error(std::string("standard input: cannot be read: ") + std::strerror(errno));
        }
        return;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error(path + ": cannot be opened: " + std::strerror(errno));
    }
    ForEachLine(file, path, handle);
}

void ForEachUserOfDatabase(const std::string& connectionText, unsigned timeoutSeconds, const UserHandler& handle)
{
    if (openSECM_Listing == nullptr) {
        throw std::runtime_error("the security manager in use cannot list its users; name them with --users-from");
    }
    openSECM_Listing(connectionText.c_str(), timeoutSeconds)->ForEachUser(handle);
}
