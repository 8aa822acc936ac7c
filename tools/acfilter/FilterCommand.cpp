// One manager and one connection serve all users, one after the other, so a list may be as long as it likes.
#include "tools/acfilter/FilterCommand.h"

#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "tools/acfilter/HostOptions.h"
#include "tools/acfilter/Progress.h"
#include "tools/acfilter/TextOption.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct FilterOptions {
    HostOptions host;
    std::string ipAddress;
    bool withoutLogin = false;
    std::string format = "text";
    std::vector<std::string> users;
    std::string usersFrom;
};

using UserHandler = std::function<void(const std::string& userName)>;

// One name a line; LF or CR LF ends it and the last may lack it; empty lines are passed over.
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

void ForEachUser(const FilterOptions& options, const UserHandler& handle)
{
    if (options.usersFrom == "-") {
        ForEachLine(std::cin, "standard input", handle);
        if (std::ferror(stdin) != 0) { // which std::cin takes for the end
            throw std::runtime_error(std::string("standard input: cannot be read: ") + std::strerror(errno));
        }
    } else if (!options.usersFrom.empty()) {
        std::ifstream file(options.usersFrom, std::ios::binary);
        if (!file) {
            throw std::runtime_error(options.usersFrom + ": cannot be opened: " + std::strerror(errno));
        }
        ForEachLine(file, options.usersFrom, handle);
    } else {
        for (const std::string& name : options.users) {
            handle(name);
        }
    }
}

std::string FilterOf(SECM_AccessControlInterface& accessControl, const FilterOptions& options,
                     const std::string& userName)
{
    try {
        return options.withoutLogin ? accessControl.GetAccessControlFilter(userName)
                                    : accessControl.GetAccessControlFilter(userName, options.ipAddress);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("user '" + userName + "': " + error.what());
    }
}

std::string LineFor(const FilterOptions& options, const std::string& userName, std::string filter)
{
    if (options.format == "json") {
        const nlohmann::ordered_json object = {{"user", userName}, {"filter", std::move(filter)}};
        return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    }
    return std::move(filter) + "\n";
}

void Print(const std::string& text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        throw std::runtime_error(std::string("standard output cannot be written: ") + std::strerror(errno));
    }
}

void PrintFilters(const FilterOptions& options)
{
    ApplyHostOptions(options.host);
    std::string repository = options.host.repository;
    const std::unique_ptr<SECM_AccessControlInterface> accessControl(
        SECM_AccessControlInterface::CreateInstance(repository));
    if (!accessControl->InitSecurityConnection(options.host.securityDatabase.c_str(), options.host.timeoutSeconds)) {
        throw std::runtime_error(
            "the security database given by --security refused the connection; the reason is logged at level 3");
    }

    Progress progress;
    ForEachUser(options, [&](const std::string& userName) {
        Print(LineFor(options, userName, FilterOf(*accessControl, options, userName)));
        progress.CountOne();
    });
    if (std::fflush(stdout) != 0) {
        throw std::runtime_error(std::string("standard output cannot be written: ") + std::strerror(errno));
    }
}

} // namespace

void AddFilterCommand(CLI::App& app)
{
    CLI::App* command = app.add_subcommand("filter", "Print the access-control filter of each user, one a line");
    auto options = std::make_shared<FilterOptions>();
    AddHostOptions(*command, options->host);
    AddOption(*command, "--ip", options->ipAddress, "The address that the users log in from")->type_name("ADDRESS");
    command->add_flag("--no-login", options->withoutLogin, "Ask by user name, without logging the user in");
    AddOption(*command, "--format", options->format, "text: the filter's bytes; json: one object a line")
        ->check(CLI::IsMember({"text", "json"}));
    CLI::Option* users = AddOption(*command, "USER", options->users, "User names; one that begins with - after --");
    users->type_name("");
    AddOption(*command, "--users-from", options->usersFrom, "A file of user names, one a line; - for standard input")
        ->excludes(users)
        ->type_name("FILE");
    command->callback([options] {
        if (options->users.empty() && options->usersFrom.empty()) {
            throw CLI::RequiredError("USER or --users-from");
        }
        // Closed, its number would go to the next file that is opened, and that would be read for users.
        if (options->usersFrom == "-" && fcntl(STDIN_FILENO, F_GETFD) == -1) {
            throw std::runtime_error(std::string("standard input: cannot be read: ") + std::strerror(errno));
        }
        PrintFilters(*options);
    });
}
