// Both sides answer side by side, user by user. One configuration is in force at a time, so each side's manager is made
// while its own is; what is made keeps it.
#include "tools/acfilter/commands/DiffCommand.h"

#include "analysis/trace/Tracer.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "tools/acfilter/cli/TextOption.h"
#include "tools/acfilter/commands/RequestOptions.h"
#include "tools/acfilter/commands/UserSource.h"
#include "tools/acfilter/io/Progress.h"
#include "tools/acfilter/render/ComparisonWriter.h"

#include <memory>
#include <set>

namespace secm::acfilter {

namespace {

struct DiffOptions {
    HostOptions host;
    RequestOptions request;
    std::string toConfiguration;
    std::optional<std::string> toSecurityDatabase;
    std::optional<std::string> usersFrom;
    std::vector<std::string> excluding;
    bool isFull = false;
    bool isStrict = false;
};

class Side {
public:
    /// The configuration in force is the side's own.
    Side(const char* sideName, const HostOptions& host, const std::string& securityOption)
        : name(sideName), tracer(host.repository)
    {
        Connect(tracer, host, securityOption);
    }

    analysis::Trace Explain(const analysis::Request& request)
    {
        try {
            return tracer.Explain(request);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(name + ": " + error.what());
        }
    }

    const analysis::RepositoryRules& Rules() const { return tracer.Rules(); }

private:
    std::string name;
    analysis::Tracer tracer;
};

HostOptions HostAfter(const DiffOptions& options)
{
    HostOptions host = options.host;
    host.configuration = options.toConfiguration;
    host.securityDatabase = options.toSecurityDatabase.value_or(host.securityDatabase);
    return host;
}

bool HasOtherDatabase(const DiffOptions& options)
{
    return HostAfter(options).securityDatabase != options.host.securityDatabase;
}

std::unique_ptr<Side> SideBefore(const DiffOptions& options)
{
    ApplyHostOptions(options.host);
    RequireRepository(options.host);
    return std::make_unique<Side>("before", options.host, "--security");
}

std::unique_ptr<Side> SideAfter(const DiffOptions& options)
{
    const HostOptions host = HostAfter(options);
    if (host.configuration.empty()) {
        throw std::runtime_error("no configuration: the path given to --to is empty");
    }
    ApplyHostOptions(host);
    CFG_Factory::Reload();
    RequireRepository(host);
    return std::make_unique<Side>("after", host, options.toSecurityDatabase ? "--to-security" : "--security");
}

void RequireFields(const std::vector<std::string>& fields, const analysis::RepositoryRules& before,
                   const analysis::RepositoryRules& after)
{
    std::set<std::string> known;
    for (const analysis::RepositoryRules* rules : {&before, &after}) {
        for (const auto& field : rules->fields) {
            known.insert(field->name);
        }
    }
    for (const std::string& field : fields) {
        if (known.count(field) == 0) {
            throw std::runtime_error("neither configuration has a field '" + field +
                                     "' for the repository; correct --excluding");
        }
    }
}

std::string WithoutBlanksAround(const std::string& name)
{
    constexpr const char* blanks = " \t";
    const std::size_t begin = name.find_first_not_of(blanks);
    return begin == std::string::npos ? std::string() : name.substr(begin, name.find_last_not_of(blanks) + 1 - begin);
}

bool IsUnknown(const analysis::Trace& trace)
{
    return trace.answer.outcome == analysis::Outcome::unknownUser;
}

// Looks for a user whose name differs only by the blanks around it.
UnknownUser UnknownUserOf(analysis::Request request, Side& before, Side& after)
{
    const std::string name = std::exchange(request.userName, WithoutBlanksAround(request.userName));
    const bool isKnown =
        request.userName != name && (!IsUnknown(before.Explain(request)) || !IsUnknown(after.Explain(request)));
    return {name, isKnown ? request.userName : ""};
}

// A comparison of nobody must not look like one in which nobody sees more.
void RequireSomebody(const Comparison& comparison)
{
    const std::string nobody = "nobody was compared: ";
    if (comparison.CountOfAll() == 0) {
        throw std::runtime_error(nobody + "neither security database holds a user; check the option --security");
    }
    if (comparison.CountOfAll() == comparison.UnknownCount()) {
        throw std::runtime_error(nobody + "neither side knows any of the " + std::to_string(comparison.CountOfAll()) +
                                 " users who were asked for; the first is '" + comparison.FirstUnknown().front().name +
                                 "'; check the options --users-from and --security");
    }
}

// Everybody whom one of the two sides knows, once.
template <class Compare>
void ForEachUserOfBoth(const DiffOptions& options, Compare compare)
{
    const HostOptions& host = options.host;
    ForEachUserOfDatabase(host.securityDatabase, host.timeoutSeconds,
                          [&](const std::string& name) { compare(name, false); });
    if (HasOtherDatabase(options)) {
        ForEachUserOfDatabase(*options.toSecurityDatabase, host.timeoutSeconds,
                              [&](const std::string& name) { compare(name, true); });
    }
}

void CompareUsers(const DiffOptions& options, Comparison& comparison)
{
    const std::unique_ptr<Side> before = SideBefore(options);
    const std::unique_ptr<Side> after = SideAfter(options);
    RequireFields(options.excluding, before->Rules(), after->Rules());
    const analysis::TraceComparison rules(before->Rules().settings, after->Rules().settings,
                                          {options.excluding.begin(), options.excluding.end()});

    for (const analysis::SettingChange& setting : rules.CompareSettings()) {
        comparison.Add(setting);
    }

    Progress progress(false);
    const auto compare = [&](const std::string& name, bool onlyIfNew) {
        const analysis::Request request{name, options.request.ipAddress, options.request.withoutLogin};
        AskFor(name, [&] {
            const analysis::Trace old = before->Explain(request);
            if (onlyIfNew && !IsUnknown(old)) {
                return;
            }
            const analysis::Trace now = after->Explain(request);
            comparison.Add(rules.Compare(old, now));
            if (IsUnknown(old) && IsUnknown(now)) {
                comparison.AddUnknown(UnknownUserOf(request, *before, *after));
            }
            progress.CountOne();
        });
    };
    if (options.usersFrom) {
        ForEachUserOfFile(*options.usersFrom, [&](const std::string& name) { compare(name, false); });
    } else {
        ForEachUserOfBoth(options, compare);
    }
}

void Diff(const DiffOptions& options, ExitStatus& status)
{
    RequireUsersFrom(options.usersFrom);
    OutputFile output(std::nullopt);
    Comparison comparison({options.host.repository, options.host.configuration, options.toConfiguration,
                           HasOtherDatabase(options), options.excluding},
                          options.request.format == "json", options.isFull);
    CompareUsers(options, comparison);
    comparison.WriteTo(output);
    output.Finish();
    RequireSomebody(comparison);
    if (comparison.Holds(analysis::Change::wider) ||
        (options.isStrict && comparison.Holds(analysis::Change::changed))) {
        status = wider;
    }
}

} // namespace

void AddDiffCommand(CLI::App& app, ExitStatus& status)
{
    CLI::App* command =
        app.add_subcommand("diff", "Tell who would see more or less under another configuration or other permissions");
    auto options = std::make_shared<DiffOptions>();
    AddHostOptions(*command, options->host);
    AddOption(*command, "--to", options->toConfiguration, "The configuration to compare with")
        ->type_name("PATH")
        ->required();
    AddOption(*command, "--to-security", options->toSecurityDatabase,
              "The security database to compare with; else the same")
        ->type_name("CONNECT");
    AddRequestOptions(*command, options->request, "text: for people; json: one object a line, the summary first");
    AddOption(*command, "--users-from", options->usersFrom,
              "A file of user names, one a line; - for standard input; else every user of both security databases")
        ->type_name("FILE");
    AddOption(*command, "--excluding", options->excluding,
              "A field whose values are left out of what is shown, so that more of them show less")
        ->allow_extra_args(false)
        ->type_name("FIELD");
    command->add_flag("--full", options->isFull, "Show long lists and texts whole");
    command->add_flag("--strict", options->isStrict, "Exit with 4 also when it cannot be told of somebody");
    command->callback([options, &status] { Diff(*options, status); });
}

} // namespace secm::acfilter
