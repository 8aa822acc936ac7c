// The only file that includes the option parser, which takes long to compile.
#include "tools/acfilter/cli/CommandLine.h"

#include "platform/Version.h"
#include "tools/acfilter/cli/Arguments.h"
#include "tools/acfilter/cli/Message.h"
#include "tools/acfilter/commands/CheckCommand.h"
#include "tools/acfilter/commands/CommonOptions.h"
#include "tools/acfilter/commands/DiffCommand.h"
#include "tools/acfilter/commands/Errors.h"
#include "tools/acfilter/commands/ExplainCommand.h"
#include "tools/acfilter/commands/FilterCommand.h"
#include "tools/acfilter/commands/ReportCommand.h"
#include "tools/acfilter/commands/TestCommand.h"
#include "tools/acfilter/io/OutputFile.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace secm::acfilter {

namespace {

// Makes the option take its texts as they were typed.
CLI::Option* TakeAsTyped(CLI::Option* option)
{
    const auto removeMark = [](std::string& text) {
        RemoveMark(text);
        return std::string(); // no objection
    };
    return option->transform(CLI::Validator(removeMark, ""));
}

// Adds an option with a value, which must live until the option has been parsed.
template <class Value>
CLI::Option* AddOption(CLI::App& command, const std::string& name, Value& value, const std::string& help)
{
    CLI::Option* option = TakeAsTyped(command.add_option(name, value, help));
    if constexpr (std::is_convertible_v<int, Value>) { // an empty text would be taken for 0
        option->check([](const std::string& text) { return text.empty() ? "a number is missing" : std::string(); });
    }
    return option;
}

void AddFormat(CLI::App& command, Format& format, const std::string& help, const std::vector<std::string>& names)
{
    static const std::map<std::string, Format> formats = {{"text", Format::text},
                                                          {"csv", Format::csv},
                                                          {"json", Format::json},
                                                          {"html", Format::html},
                                                          {"junit", Format::junit}};
    const auto choose = [&format](const std::string& name) { format = formats.at(name); };
    TakeAsTyped(command.add_option_function<std::string>("--format", choose, help))->check(CLI::IsMember(names));
}

// The options that a command requires, beside --config.
struct Required {
    bool securityDatabase = true;
    bool repository = true;
};

void AddLimitAndLogOptions(CLI::App& command, HostOptions& options)
{
    AddOption(command, "--timeout", options.timeoutSeconds, "Limit for connecting and for each statement, in seconds")
        ->type_name("SECONDS");
    AddOption(command, "--log-level", options.logLevel, "Log this level and below: 3 failures ... 7 traces")
        ->type_name("N");
    AddOption(command, "--log-file", options.logFile, "Append the log to this file; else to standard error")
        ->type_name("PATH");
}

void AddHostOptions(CLI::App& command, HostOptions& options, Required required)
{
    AddOption(command, "-c,--config", options.configuration, "The configuration: a TOML file, or a folder of them")
        ->envname("CFG_REPOSITORY")
        ->type_name("PATH")
        ->required();
    AddOption(command, "-s,--security", options.securityDatabase,
              "The security database: sqlite3://db=FILE or postgresql://host=... dbname=...")
        ->envname("SECM_CONNECTION")
        ->type_name("CONNECT")
        ->required(required.securityDatabase);
    AddOption(command, "-r,--repository", options.repository, "The repository of the configuration to ask")
        ->type_name("NAME")
        ->required(required.repository);
    AddLimitAndLogOptions(command, options);
}

void AddRequestOptions(CLI::App& command, RequestOptions& options, const std::string& formatHelp,
                       const std::vector<std::string>& formats = {"text", "json"})
{
    AddOption(command, "--ip", options.ipAddress, "The address that the users log in from")->type_name("ADDRESS");
    command.add_flag("--no-login", options.withoutLogin, "Ask by user name, without logging the user in");
    AddFormat(command, options.format, formatHelp, formats);
}

void AddDataOptions(CLI::App& command, DataOptions& options, const char* help)
{
    AddOption(command, "--data", options.connection, help)->type_name("CONNECT");
    AddOption(command, "--table", options.table, "The table or view of the rows; for SQL")->type_name("NAME");
    AddOption(command, "--key", options.key, "The column that tells rows apart; for SQL")->type_name("COLUMN");
}

void AddRecordOption(CLI::App& command, DataOptions& options, const char* help)
{
    AddOption(command, "--record", options.record, help)->type_name("KEY");
}

void AddOptions(CLI::App& command, FilterOptions& options)
{
    AddHostOptions(command, options.host, {});
    AddRequestOptions(command, options.request, "text: the filter's bytes; json: one object a line");
    CLI::Option* users = AddOption(command, "USER", options.users, "User names; one that begins with - after --");
    users->type_name("");
    AddOption(command, "--users-from", options.usersFrom, "A file of user names, one a line; - for standard input")
        ->excludes(users)
        ->type_name("FILE");
}

void AddChangeOptions(CLI::App& command, ChangeOptions& options)
{
    const auto addChange = [&](const char* name, std::vector<std::string>& texts, const char* help, const char* form) {
        AddOption(command, name, texts, help)->allow_extra_args(false)->type_name(form);
    };
    addChange("--attribute", options.attributes, "As if the user had this attribute", "NAME=VALUE");
    addChange("--grant", options.grants, "As if this were granted too; without a resource, outright",
              "NAME:VALUE[:RESOURCE]");
    addChange("--revoke", options.revocations, "As if this were not granted", "NAME[:RESOURCE]");
}

void AddOptions(CLI::App& command, ExplainOptions& options)
{
    AddHostOptions(command, options.host, {});
    AddRequestOptions(command, options.request, "text: for people; json: one object, for programs");
    command.add_flag("--full", options.isFull, "Show long lists and texts completely");
    AddDataOptions(command, options.data,
                   "Try the filter on rows: sqlite3://db=FILE, postgresql://... or command:PROGRAM ARGS");
    AddRecordOption(command, options.data, "Say why the user sees the row with this key, or does not");
    AddChangeOptions(command, options.changes);
    AddOption(command, "USER", options.user, "The user's name; one that begins with - after --")
        ->required()
        ->type_name("");
}

void AddOptions(CLI::App& command, CheckOptions& options)
{
    AddHostOptions(command, options.host, {.securityDatabase = false, .repository = false});
    command.add_flag("--strict", options.isStrict, "Let warnings count as errors for the exit status");
    AddFormat(command, options.format, "text for people; json: one object a line", {"text", "json"});
    command.get_option("--repository")->each([&options](const std::string&) { options.oneRepository = true; });
    command.get_option("--security")->each([&options](const std::string&) { options.withSecurity = true; });
}

void AddOptions(CLI::App& command, ReportOptions& options)
{
    AddHostOptions(command, options.host, {});
    AddRequestOptions(command, options.request,
                      "text: a table for people; csv; json: one object a line; html: one page to keep",
                      {"text", "csv", "json", "html"});
    AddOption(command, "--users-from", options.usersFrom,
              "A file of user names, one a line; - for standard input; else every user of the security database")
        ->type_name("FILE");
    AddOption(command, "--output", options.output,
              "Write to this file, which is replaced once all is written; else to standard output")
        ->type_name("FILE");
    AddDataOptions(command, options.data,
                   "Try each filter on rows: sqlite3://db=FILE, postgresql://... or command:PROGRAM ARGS");
    AddRecordOption(command, options.data, "Say who sees the row with this key");
    command.add_flag("--values", options.showValues, "Show the values of each field, not only how many there are");
    command.add_flag("--full", options.isFull, "Show long lists and texts whole in text");
}

void AddOptions(CLI::App& command, DiffOptions& options)
{
    AddHostOptions(command, options.host, {});
    AddOption(command, "--to", options.toConfiguration,
              "The configuration to compare with; else the same, with the changes below")
        ->type_name("PATH");
    AddOption(command, "--to-security", options.toSecurityDatabase,
              "The security database to compare with; else the same")
        ->type_name("CONNECT");
    AddRequestOptions(command, options.request, "text: for people; json: one object a line, the summary first");
    AddOption(command, "--users-from", options.usersFrom,
              "A file of user names, one a line; - for standard input; else every user of both security databases")
        ->type_name("FILE");
    AddDataOptions(command, options.data,
                   "Compare on rows: sqlite3://db=FILE, postgresql://... or command:PROGRAM ARGS");
    AddChangeOptions(command, options.changes);
    CLI::Option* forUser =
        AddOption(command, "--for-user", options.forUser, "The user whom --attribute, --grant and --revoke concern")
            ->type_name("USER");
    AddOption(command, "--for-group", options.forGroup, "The group that they concern")
        ->excludes(forUser)
        ->type_name("GROUP");
    AddOption(command, "--excluding", options.excluding,
              "A field whose values are left out of what is shown, so that more of them show less")
        ->allow_extra_args(false)
        ->type_name("FIELD");
    command.add_flag("--full", options.isFull, "Show long lists and texts whole");
    command.add_flag("--strict", options.isStrict, "Exit with 4 also when it is not known whether somebody sees more");
}

void AddOptions(CLI::App& command, TestOptions& options)
{
    AddOption(command, "FILE", options.files, "Suites of tests, in TOML")->type_name("");
    AddOption(command, "--only", options.only, "Run the test of this name; may be given several times")
        ->allow_extra_args(false)
        ->type_name("NAME");
    command.add_flag("--fail-fast", options.failFast, "Run no test behind one that failed");
    AddFormat(command, options.format, "text for people; json: one object a line; junit: XML for build servers",
              {"text", "json", "junit"});
    command.add_flag("--coverage", options.showCoverage, "Show what no test reaches in the rules");
    AddOption(command, "--min-coverage", options.leastCoverage, "Exit with 3 when the tests reach less of the rules")
        ->type_name("PERCENT");
    command.add_flag("--allow-command", options.allowCommand, "Start the program that a suite names for its rows");
    command.add_flag("--init", options.init, "Write a suite from what is true today to standard output");
    AddOption(command, "-c,--config", options.host.configuration,
              "The configuration, in place of the suite's; with --init, the one to ask")
        ->type_name("PATH");
    AddOption(command, "-s,--security", options.host.securityDatabase, "With --init: the security database")
        ->type_name("CONNECT");
    AddOption(command, "-r,--repository", options.host.repository, "With --init: the repository")->type_name("NAME");
    AddOption(command, "--users-from", options.usersFrom,
              "With --init: a file of user names; else every user of the security database")
        ->type_name("FILE");
    AddDataOptions(command, options.data,
                   "With --init: count rows of sqlite3://db=FILE, postgresql://... or "
                   "command:PROGRAM ARGS");
    AddLimitAndLogOptions(command, options.host);
}

class CommandLine {
public:
    CommandLine()
    {
        app.set_version_flag("--version", std::string("acfilter ") + version);
        app.require_subcommand(1);
        AddCommand("filter", "Print the access-control filter of each user, one a line", filter, RunFilter);
        AddCommand("explain", "Show how one user's filter is composed, step by step", explain, RunExplain);
        AddCommand("check", "Report what is wrong with a configuration, and what to do", check, RunCheck);
        AddCommand("report", "Show what each user sees: one row for each user, one column for each field", report,
                   RunReport);
        AddCommand("diff", "Show who would see more or less with another configuration or other permissions", diff,
                   RunDiff);
        AddCommand("test", "Run tests of the rules, and show which expectation is not met", test, RunTest);
    }

    bool HasCommand(const std::string& name) const
    {
        return !app.get_subcommands([&](const CLI::App* command) { return command->check_name(name); }).empty();
    }

    ExitStatus Run(int argc, const char* const* argv)
    {
        try {
            app.parse(MarkedArguments(argc, argv, [this](const std::string& option) { return TakesValue(option); }));
        } catch (const CLI::Success& request) {
            PrintAnswer(request);
            return ExitStatus::success;
        } catch (const CLI::ParseError& error) {
            throw UsageError(error.what());
        }
        return run();
    }

private:
    // Parsing sets `run`; the command runs when the whole line has been parsed.
    template <class Options>
    void AddCommand(const char* name, const char* help, Options& options, ExitStatus (*runCommand)(const Options&))
    {
        CLI::App* command = app.add_subcommand(name, help);
        AddOptions(*command, options);
        command->callback(
            [this, &options, runCommand] { run = [&options, runCommand] { return runCommand(options); }; });
    }

    bool TakesValue(const std::string& optionName) const
    {
        const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
        return std::any_of(commands.begin(), commands.end(), [&](const CLI::App* command) {
            const CLI::Option* option = command->get_option_no_throw(optionName);
            return option != nullptr && option->get_items_expected_max() > 0;
        });
    }

    // Prints what --help or --version asks for.
    void PrintAnswer(const CLI::Success& request) const
    {
        std::ostringstream answer;
        app.exit(request, answer);
        OutputFile output(std::nullopt);
        output.Write(answer.str());
        output.Finish();
    }

    CLI::App app{"Access-control filters, user by user", "acfilter"};
    std::function<ExitStatus()> run;
    FilterOptions filter;
    ExplainOptions explain;
    CheckOptions check;
    ReportOptions report;
    DiffOptions diff;
    TestOptions test;
};

} // namespace

ExitStatus RunCommandLine(int argc, const char* const* argv)
{
    CommandLine commandLine;
    if (argc > 1 && argv[1][0] != '-' && !commandLine.HasCommand(argv[1])) {
        const std::string message = std::string("there is no command '") + argv[1] + "'; see acfilter --help";
        std::fputs(Message(message).c_str(), stderr);
        return ExitStatus::wrongCommandLine;
    }
    return commandLine.Run(argc, argv);
}

} // namespace secm::acfilter
