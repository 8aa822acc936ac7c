// One manager and one connection serve all users, one after the other, and what has to wait waits in a file: the number
// of users takes no memory.
#include "tools/acfilter/commands/ReportCommand.h"

#include "analysis/trace/Tracer.h"
#include "tools/acfilter/cli/TextOption.h"
#include "tools/acfilter/commands/CommandInputs.h"
#include "tools/acfilter/commands/UserSource.h"
#include "tools/acfilter/io/Progress.h"
#include "tools/acfilter/io/StandardStreams.h"
#include "tools/acfilter/render/ReportWriter.h"

#include <array>
#include <ctime>

namespace secm::acfilter {

namespace {

struct ReportOptions {
    HostOptions host;
    RequestOptions request;
    std::optional<std::string> usersFrom;
    std::optional<std::string> output;
    bool showValues = false;
    bool isFull = false;
};

std::string Now()
{
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    std::array<char, sizeof "YYYY-MM-DD HH:MM:SS UTC"> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &utc);
    return text.data();
}

// The digests are those of the files that were read: the same before and after.
std::vector<FileDigest> ApplyAndDigest(const HostOptions& host)
{
    std::vector<FileDigest> before = DigestsOf(host.configuration);
    ApplyHostOptions(host);
    if (DigestsOf(host.configuration) != before) {
        throw std::runtime_error(host.configuration + ": was changed while it was read; run the report again");
    }
    return before;
}

std::unique_ptr<ReportWriter> MakeReport(const ReportHead& head, OutputFile& output)
{
    const std::string& format = head.request.format;
    return format == "html"   ? MakeHtmlReport(head, output)
           : format == "csv"  ? MakeCsvReport(head, output)
           : format == "json" ? MakeJsonReport(head, output)
                              : MakeTextReport(head, output);
}

void Report(const ReportOptions& options)
{
    RequireUsersFrom(options.usersFrom);
    ReportHead head{options.host.repository, {}, options.request, options.showValues, options.isFull, false, {}, Now()};
    if (options.request.format == "html") {
        head.configuration = ApplyAndDigest(options.host);
    } else {
        ApplyHostOptions(options.host);
    }
    RequireRepository(options.host);
    head.isForTerminal = !options.output && OutputIsTerminal();
    analysis::Tracer tracer(options.host.repository);
    for (const auto& rule : tracer.Rules().fields) {
        head.fields.push_back(rule->name);
    }
    Connect(tracer, options.host);
    if (options.output) {
        RequireNoInput(*options.output, options.host, options.usersFrom);
    }
    OutputFile output(options.output);

    const std::unique_ptr<ReportWriter> writer = MakeReport(head, output);
    {
        const bool rowsAppear =
            !options.output && (options.request.format == "csv" || options.request.format == "json");
        Progress progress(rowsAppear);
        const auto addRow = [&](const std::string& userName) {
            const analysis::Request request{userName, options.request.ipAddress, options.request.withoutLogin};
            writer->Add(AccessOf(AskFor(userName, [&] { return tracer.Explain(request); }), head.fields.size()));
            progress.CountOne();
        };
        if (options.usersFrom) {
            ForEachUserOfFile(*options.usersFrom, addRow);
        } else {
            ForEachUserOfDatabase(options.host.securityDatabase, options.host.timeoutSeconds, addRow);
        }
        if (progress.Count() == 0) {
            throw std::runtime_error("the security database holds no user, so there is nothing to report; check the "
                                     "option --security");
        }
    }
    writer->Finish();
    output.Finish();
}

} // namespace

void AddReportCommand(CLI::App& app)
{
    CLI::App* command = app.add_subcommand("report", "Tell who sees what: a row a user, a column a field");
    auto options = std::make_shared<ReportOptions>();
    AddHostOptions(*command, options->host);
    AddRequestOptions(*command, options->request,
                      "text: a table for people; csv; json: one object a line; html: one page to keep",
                      {"text", "csv", "json", "html"});
    AddOption(*command, "--users-from", options->usersFrom,
              "A file of user names, one a line; - for standard input; else every user of the security database")
        ->type_name("FILE");
    AddOption(*command, "--output", options->output,
              "Write to this file, which is replaced once all is written; else to standard output")
        ->type_name("FILE");
    command->add_flag("--values", options->showValues, "Show the values of each field, not only how many there are");
    command->add_flag("--full", options->isFull, "Show long lists and texts whole in text");
    command->callback([options] { Report(*options); });
}

} // namespace secm::acfilter
