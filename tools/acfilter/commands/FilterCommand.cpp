// One object and one connection serve all users, one after the other, so a list may be of any length.
#include "tools/acfilter/commands/FilterCommand.h"

#include "SECM_AccessControl/SECM_AccessControlInterface.h"
#include "analysis/trace/Tracer.h"
#include "tools/acfilter/commands/Configuration.h"
#include "tools/acfilter/commands/Connection.h"
#include "tools/acfilter/commands/Errors.h"
#include "tools/acfilter/commands/Log.h"
#include "tools/acfilter/commands/UserSource.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/Progress.h"
#include "tools/acfilter/render/Explanation.h"

#include <functional>
#include <memory>

namespace secm::acfilter {

namespace {

void ForEachUser(const FilterOptions& options, const UserHandler& handle)
{
    if (options.usersFrom) {
        ForEachUserOfFile(*options.usersFrom, handle);
    } else {
        for (const std::string& name : options.users) {
            handle(name);
        }
    }
}

using LineFor = std::function<std::string(const analysis::Request& request)>;

// JSON names the outcome, which the module does not give, so a tracer answers.
LineFor JsonLines(const FilterOptions& options)
{
    const auto tracer = std::make_shared<analysis::Tracer>(options.host.repository);
    Connect(*tracer, options.host);
    return [tracer](const analysis::Request& request) {
        return AnswerJson(request.userName, tracer->Explain(request).answer);
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

} // namespace

ExitStatus RunFilter(const FilterOptions& options)
{
    if (options.users.empty() && !options.usersFrom) {
        throw UsageError("USER or --users-from is required");
    }
    RequireUsersFrom(options.usersFrom);
    OutputFile output(std::nullopt);
    StartLog(options.host);
    UseConfiguration(options.host);
    RequireRepository(options.host.repository, options.host.configuration);
    const LineFor lineFor = options.request.format == Format::json ? JsonLines(options) : TextLines(options);

    Progress progress;
    ForEachUser(options, [&](const std::string& userName) {
        const analysis::Request request{userName, options.request.ipAddress, options.request.withoutLogin};
        output.Write(AskFor(userName, [&] { return lineFor(request); }));
        progress.CountOne();
    });
    output.Finish();
    return ExitStatus::success;
}

} // namespace secm::acfilter
