// Writes a suite that passes as long as nobody sees more or less than today.
#include "tools/acfilter/commands/TestCommand.h"

#include "analysis/trace/Tracer.h"
#include "platform/database/ConnectionText.h"
#include "platform/security_manager/SECM_Listing.h"
#include "tools/acfilter/commands/Configuration.h"
#include "tools/acfilter/commands/Connection.h"
#include "tools/acfilter/commands/Errors.h"
#include "tools/acfilter/commands/Log.h"
#include "tools/acfilter/commands/RowData.h"
#include "tools/acfilter/commands/UserSource.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/Progress.h"
#include "tools/acfilter/render/SuiteText.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace secm::acfilter {

namespace {

std::string FromEnvironment(const std::string& given, const char* variable)
{
    const char* value = given.empty() ? std::getenv(variable) : nullptr;
    return value != nullptr ? value : given;
}

TestOptions WithEnvironment(TestOptions options)
{
    options.host.configuration = FromEnvironment(options.host.configuration, "CFG_REPOSITORY");
    options.host.securityDatabase = FromEnvironment(options.host.securityDatabase, "SECM_CONNECTION");
    if (!options.files.empty() || !options.only.empty() || options.failFast || options.showCoverage ||
        options.leastCoverage || options.format != Format::text) {
        throw UsageError("--init writes a suite to standard output; it takes no FILE and no option of a test run");
    }
    if (options.host.configuration.empty() || options.host.securityDatabase.empty() ||
        options.host.repository.empty()) {
        throw UsageError("--init needs --config, --security and --repository");
    }
    RequireDataUse(options.data);
    return options;
}

// A suite is read by others, so it must not hold a password. Its paths are absolute, so that it can stand anywhere.
std::string WithoutSecrets(const std::string& connection, const char* option)
{
    if (connection.empty() || connection.starts_with("command:")) {
        return connection;
    }
    const platform::DatabaseAddress address = platform::DatabaseAddressOf(connection, 0);
    if (const auto* sqlite = std::get_if<platform::SqliteAddress>(&address)) {
        return fmt::format("sqlite3://db=\"{}\"", std::filesystem::absolute(sqlite->file).string());
    }
    if (platform::ShownConnectionText(connection).find("***") != std::string::npos) {
        throw std::runtime_error(fmt::format("{}: the connection text holds what may be a secret, which would stand in "
                                             "the suite; write the password into a password file: passfile=FILE",
                                             option));
    }
    return connection;
}

} // namespace

ExitStatus RunTestInit(const TestOptions& given)
{
    const TestOptions options = WithEnvironment(given);
    RequireUsersFrom(options.usersFrom);
    OutputFile output(std::nullopt);
    StartLog(options.host);
    UseConfiguration(options.host);
    RequireRepository(options.host.repository, options.host.configuration);
    const SuiteHead head{std::filesystem::absolute(options.host.configuration).string(),
                         options.host.repository,
                         WithoutSecrets(options.host.securityDatabase, "--security"),
                         WithoutSecrets(options.data.connection, "--data"),
                         options.data.table,
                         options.data.key};
    analysis::Tracer tracer(options.host.repository);
    Connect(tracer, options.host);
    const auto rows = OpenRows(options.data, options.host.timeoutSeconds);

    output.Write("# What is true today, one test for each user. Run it after a change: acfilter test FILE\n" +
                 SuiteHeadText(head));
    Progress progress;
    const auto write = [&](const std::string& user) {
        output.Write(AskFor(user, [&] {
            const analysis::Trace trace = tracer.Explain({user, "", false});
            return SuiteTestText(trace,
                                 rows ? std::optional(rows->Count(analysis::RowFilterOf(trace.answer))) : std::nullopt);
        }));
        progress.CountOne();
    };
    if (options.usersFrom) {
        ForEachUserOfFile(*options.usersFrom, write);
    } else {
        ForEachUserOfDatabase(options.host, write);
    }
    if (progress.Count() == 0) {
        throw std::runtime_error("there is no user to write a test for; check the options --security and --users-from");
    }
    output.Finish();
    return ExitStatus::success;
}

} // namespace secm::acfilter
