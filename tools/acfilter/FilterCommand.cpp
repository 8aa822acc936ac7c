// One manager and one connection serve all users, one after the other, so a list may be as long as it likes.
#include "tools/acfilter/FilterCommand.h"

#include "tools/acfilter/Json.h"
#include "tools/acfilter/OutputFile.h"
#include "tools/acfilter/Progress.h"
#include "tools/acfilter/RequestOptions.h"
#include "tools/acfilter/TextOption.h"
#include "tools/acfilter/UserSource.h"
#include "tools/acfilter/WatchingManager.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace {

struct FilterOptions {
    HostOptions host;
    RequestOptions request;
    std::vector<std::string> users;
    std::string usersFrom;
};

void ForEachUser(const FilterOptions& options, const UserHandler& handle)
{
    if (!options.usersFrom.empty()) {
        ForEachUserOfFile(options.usersFrom, handle);
    } else {
        for (const std::string& name : options.users) {
            handle(name);
        }
    }
}

std::string LineFor(const FilterOptions& options, const std::string& userName, Answer answer)
{
    if (options.request.format == "json") {
        const Json object = {
            {"user", userName}, {"filter", std::move(answer.filter)}, {"outcome", NameOf(answer.outcome)}};
        return JsonLine(object);
    }
    return std::move(answer.filter) + "\n";
}

void PrintFilters(const FilterOptions& options)
{
    OutputFile output(std::nullopt);
    ApplyHostOptions(options.host);
    RequireRepository(options.host);
    WatchingManager manager(options.host.repository);
    Connect(manager, options.host);

    Progress progress;
    ForEachUser(options, [&](const std::string& userName) {
        const Request request{userName, options.request.ipAddress, options.request.withoutLogin};
        output.Write(LineFor(options, userName, AskFor(userName, [&] { return manager.Ask(request); })));
        progress.CountOne();
    });
    output.Finish();
}

} // namespace

void AddFilterCommand(CLI::App& app)
{
    CLI::App* command = app.add_subcommand("filter", "Print the access-control filter of each user, one a line");
    auto options = std::make_shared<FilterOptions>();
    AddHostOptions(*command, options->host);
    AddRequestOptions(*command, options->request, "text: the filter's bytes; json: one object a line");
    CLI::Option* users = AddOption(*command, "USER", options->users, "User names; one that begins with - after --");
    users->type_name("");
    AddOption(*command, "--users-from", options->usersFrom, "A file of user names, one a line; - for standard input")
        ->excludes(users)
        ->type_name("FILE");
    command->callback([options] {
        if (options->users.empty() && options->usersFrom.empty()) {
            throw CLI::RequiredError("USER or --users-from");
        }
        if (!options->usersFrom.empty()) {
            RequireUsersFrom(options->usersFrom);
        }
        PrintFilters(*options);
    });
}
