// Asks both sides for each user, one user after the other. Each side's tracer is made in the scope of the side's
// configuration and keeps what it read.
#include "tools/acfilter/commands/DiffCommand.h"

#include "analysis/compare/RowComparison.h"
#include "analysis/trace/Tracer.h"
#include "tools/acfilter/commands/Configuration.h"
#include "tools/acfilter/commands/Connection.h"
#include "tools/acfilter/commands/Errors.h"
#include "tools/acfilter/commands/FileOutput.h"
#include "tools/acfilter/commands/ListedNames.h"
#include "tools/acfilter/commands/Log.h"
#include "tools/acfilter/commands/RowData.h"
#include "tools/acfilter/commands/TriedChanges.h"
#include "tools/acfilter/commands/UserSource.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/Progress.h"
#include "tools/acfilter/render/DiffWriter.h"

#include <fmt/format.h>

#include <memory>
#include <set>
#include <stdexcept>
#include <utility>

namespace secm::acfilter {

namespace {

class Side {
public:
    /// `configurationOption` and `securityOption` name the options that gave the configuration and the database, for
    /// errors.
    Side(std::string sideName, const HostOptions& host, const char* configurationOption,
         const std::string& securityOption, const analysis::WhatIf& tried)
        : name(std::move(sideName)), tracer(MakeTracer(host, configurationOption, tried))
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
    static analysis::Tracer MakeTracer(const HostOptions& host, const char* configurationOption,
                                       const analysis::WhatIf& tried)
    {
        const CFG_CandidateScope scope(ReadConfiguration(host.configuration, configurationOption));
        RequireRepository(host.repository, host.configuration);
        return analysis::Tracer(host.repository, tried);
    }

    std::string name;
    analysis::Tracer tracer;
};

HostOptions HostAfter(const DiffOptions& options)
{
    HostOptions host = options.host;
    host.configuration = options.toConfiguration.value_or(host.configuration);
    host.securityDatabase = options.toSecurityDatabase.value_or(host.securityDatabase);
    return host;
}

void RequireUse(const DiffOptions& options)
{
    const bool isNamed = options.forUser || options.forGroup;
    if (!options.changes.IsEmpty() && !isNamed) {
        throw UsageError(
            "--attribute, --grant and --revoke need --for-user or --for-group, which names the user or the "
            "group whom they concern");
    }
    if (options.changes.IsEmpty() && isNamed) {
        throw UsageError("--for-user and --for-group need a change: --attribute, --grant or --revoke");
    }
    if (!options.toConfiguration && !options.toSecurityDatabase && !isNamed) {
        throw UsageError("there is nothing to compare with; give --to, --to-security, or --grant, --revoke or "
                         "--attribute with --for-user or --for-group");
    }
}

analysis::WhatIf ChangesAfter(const DiffOptions& options)
{
    analysis::WhatIf tried = WhatIfFrom(options.changes);
    if (options.forUser || options.forGroup) {
        tried.grantee = {options.forGroup.has_value(), options.forGroup ? *options.forGroup : *options.forUser};
    }
    return tried;
}

bool HasOtherDatabase(const DiffOptions& options)
{
    return HostAfter(options).securityDatabase != options.host.securityDatabase;
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
            throw std::runtime_error(
                fmt::format("neither configuration has a field '{}' for the repository; correct --excluding", field));
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

// Looks for a user whose name is the same without the blanks around it.
UnknownUser UnknownUserOf(analysis::Request request, Side& before, Side& after)
{
    const std::string name = std::exchange(request.userName, WithoutBlanksAround(request.userName));
    const bool isKnown =
        request.userName != name && (!IsUnknown(before.Explain(request)) || !IsUnknown(after.Explain(request)));
    return {name, isKnown ? request.userName : ""};
}

// A comparison of no users must not end like one in which no user sees more.
void RequireSomebody(const DiffSummary& summary)
{
    constexpr const char* nobody = "nobody was compared: ";
    if (summary.CountOfAll() == 0) {
        throw std::runtime_error(
            fmt::format("{}neither security database holds a user; check the option --security", nobody));
    }
    if (summary.CountOfAll() == summary.unknownCount) {
        throw std::runtime_error(fmt::format("{}neither side knows any of the {} users who were asked for; the first "
                                             "is '{}'; check the options --users-from and --security",
                                             nobody, summary.CountOfAll(), summary.firstUnknown.front().name));
    }
}

// The comparison of all users.
class Diff {
public:
    Diff(const DiffOptions& diffOptions, DiffWriter& diffWriter)
        : options(diffOptions), writer(diffWriter), tried(ChangesAfter(options)),
          before("before", options.host, "--config", "--security", {}),
          after("after", HostAfter(options), options.toConfiguration ? "--to" : "--config",
                options.toSecurityDatabase ? "--to-security" : "--security", tried),
          comparison(before.Rules().settings, after.Rules().settings,
                     {options.excluding.begin(), options.excluding.end()}),
          data(OpenRows(options.data, options.host.timeoutSeconds))
    {
        if (data) {
            CountAll(*data); // fails here when the rows cannot be read
        }
        RequireFields(options.excluding, before.Rules(), after.Rules());
    }

    void CompareSettings()
    {
        for (const analysis::SettingChange& setting : comparison.CompareSettings()) {
            writer.Add(setting);
        }
    }

    void CompareUsers()
    {
        const auto compare = [this](const std::string& name) { AskFor(name, [&] { Compare(name); }); };
        if (options.usersFrom) {
            ForEachUserOfFile(*options.usersFrom, compare);
        } else if (HasOtherDatabase(options)) {
            CompareUsersOfBoth(compare);
        } else {
            ForEachUserOfDatabase(options.host, compare);
        }
        RequireTried();
    }

private:
    // A misspelt name must not look like a change without consequences.
    void RequireTried() const
    {
        if (tried.grantee && !isTriedOnSomebody) {
            throw std::runtime_error(
                tried.grantee->isGroup
                    ? fmt::format("no user who was compared is in the group '{}'; correct --for-group",
                                  tried.grantee->name)
                    : fmt::format("no user who was compared has the name '{}'; correct --for-user",
                                  tried.grantee->name));
        }
    }

    // Everybody whom one of the two databases knows, once.
    void CompareUsersOfBoth(const UserHandler& compare)
    {
        ListedNames listedBefore;
        ForEachUserOfDatabase(options.host, [&](const std::string& name) {
            listedBefore.Add(name);
            compare(name);
        });
        ForEachUserOfDatabase(HostAfter(options), [&](const std::string& name) {
            const std::optional<bool> isListed = listedBefore.Holds(name);
            const bool isCompared =
                isListed ? *isListed : AskFor(name, [&] { return !IsUnknown(before.Explain(RequestFor(name))); });
            if (!isCompared) {
                compare(name);
            }
        });
    }

    void Compare(const std::string& name)
    {
        const analysis::Request request = RequestFor(name);
        const analysis::Trace old = before.Explain(request);
        const analysis::Trace now = after.Explain(request);
        analysis::UserChange change = comparison.Compare(old, now);
        if (data) {
            analysis::CompareRows(change, *data, HasKeys(options.data) ? 1 : 0);
        }
        writer.Add(change);
        isTriedOnSomebody = isTriedOnSomebody || now.tried.isApplied;
        if (IsUnknown(old) && IsUnknown(now)) {
            writer.AddUnknown(UnknownUserOf(request, before, after));
        }
        progress.CountOne();
    }

    analysis::Request RequestFor(const std::string& name) const
    {
        return {name, options.request.ipAddress, options.request.withoutLogin};
    }

    const DiffOptions& options;
    DiffWriter& writer;
    analysis::WhatIf tried;
    bool isTriedOnSomebody = false;
    Side before;
    Side after;
    analysis::TraceComparison comparison;
    std::unique_ptr<analysis::DataSource> data; // null: filters are not tried on rows
    Progress progress{false};
};

} // namespace

ExitStatus RunDiff(const DiffOptions& options)
{
    RequireUse(options);
    RequireDataUse(options.data);
    RequireUsersFrom(options.usersFrom);
    OutputFile file(std::nullopt);
    FileOutput output(file);
    DiffWriter writer({options.host.repository, options.host.configuration, HostAfter(options).configuration,
                       HasOtherDatabase(options), options.excluding, ChangesAfter(options), ShownRows(options.data)},
                      output, options.request.format == Format::json, options.isFull);
    StartLog(options.host);
    { // removes the line of progress before the answer is written
        Diff diff(options, writer);
        diff.CompareSettings();
        diff.CompareUsers();
    }
    writer.Finish();
    file.Finish();
    const DiffSummary& summary = writer.Summary();
    RequireSomebody(summary);
    const bool somebodySeesMore = summary.HasMore() || (options.isStrict && summary.HasUnsettled());
    return somebodySeesMore ? ExitStatus::somebodySeesMore : ExitStatus::success;
}

} // namespace secm::acfilter
