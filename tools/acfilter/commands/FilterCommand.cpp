// One manager and one connection serve all users, one after the other, so a list may be as long as it likes.
#include "tools/acfilter/commands/FilterCommand.h"

#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "analysis/trace/Tracer.h"
#include "tools/acfilter/cli/TextOption.h"
#include "tools/acfilter/commands/RequestOptions.h"
#include "tools/acfilter/commands/UserSource.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/Progress.h"
#include "tools/acfilter/render/Json.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace secm::acfilter {

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

std::string JsonFor(const std::string& userName, const analysis::Answer& answer)
{
    return JsonLine({{"user", userName}, {"filter", answer.filter}, {"outcome", NameOf(answer.outcome)}});
}

using LineFor = std::function<std::string(const analysis::Request& request)>;

// The module knows no outcome, which JSON tells.
LineFor JsonLines(const FilterOptions& options)
{
    const auto tracer = std::make_shared<analysis::Tracer>(options.host.repository);
    Connect(*tracer, options.host);
    return [tracer](const analysis::Request& request) {
        return JsonFor(request.userName, tracer->Explain(request).answer);
    };
}

LineFor TextLines(const FilterOptions& options)
{
    std::string repository = options.host.repository;
    const std::shared_ptr<SECM_AccessControlInterface> module(SECM_AccessControlInterface::CreateInstance(repository));
    Connect(*module, options.host);
    return [module](const analysis::Request& request) {
        return (request.withoutLogin ? module->GetAccessControlFilter(request.userName)
                                     : module->GetAccessControlFilter(request.userName, request.ipAddress)) +
               "\n";
    };
}

void PrintFilters(const FilterOptions& options)
{
    OutputFile output(std::nullopt);
    ApplyHostOptions(options.host);
    RequireRepository(options.host);
    const LineFor lineFor = options.request.format == "json" ? JsonLines(options) : TextLines(options);

    Progress progress;
    ForEachUser(options, [&](const std::string& userName) {
        const analysis::Request request{userName, options.request.ipAddress, options.request.withoutLogin};
        output.Write(AskFor(userName, [&] { return lineFor(request); }));
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

} // namespace secm::acfilter
