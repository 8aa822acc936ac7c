// One tracer and one connection serve all users, one after the other, in a thread of their own. Rows that wait for the
// summary are kept in a file, so memory does not grow with the number of users.
#include "tools/acfilter/commands/ReportCommand.h"

#include "analysis/data/DataSource.h"
#include "analysis/trace/Tracer.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/security_manager/SECM_Listing.h"
#include "tools/acfilter/commands/CommandInputs.h"
#include "tools/acfilter/commands/Configuration.h"
#include "tools/acfilter/commands/Connection.h"
#include "tools/acfilter/commands/Errors.h"
#include "tools/acfilter/commands/FileOutput.h"
#include "tools/acfilter/commands/Log.h"
#include "tools/acfilter/commands/RowData.h"
#include "tools/acfilter/commands/UserSource.h"
#include "tools/acfilter/io/BoundedQueue.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/Progress.h"
#include "tools/acfilter/io/StandardStreams.h"
#include "tools/acfilter/render/ReportWriter.h"
#include "tools/acfilter/render/Sha256.h"

#include <array>
#include <chrono>
#include <ctime>
#include <exception>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <vector>

namespace secm::acfilter {

namespace {

using Candidate = std::shared_ptr<const CFG_Candidate>;

std::string Now()
{
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    std::array<char, sizeof "YYYY-MM-DD HH:MM:SS UTC"> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &utc);
    return text.data();
}

// A pipe cannot be read again later to compare its digest.
void RequireFileOrFolder(const std::string& path)
{
    namespace fs = std::filesystem;
    std::error_code none;
    if (fs::exists(path, none) && !fs::is_regular_file(path, none) && !fs::is_directory(path, none)) {
        throw std::runtime_error(path + ": is no file, so it has no digest; name a file, or use another --format");
    }
}

// The digests are those of the bytes that were parsed.
Candidate UseConfigurationWithDigests(const HostOptions& host, std::vector<FileDigest>& digests)
{
    RequireFileOrFolder(host.configuration);
    Candidate candidate =
        ReadConfiguration(host.configuration, "--config", [&](const std::string& path, std::string_view content) {
            digests.push_back({path, Sha256Hexadecimal(content)});
        });
    CFG_Factory::PutInForce(candidate);
    return candidate;
}

std::unique_ptr<ReportWriter> MakeWriter(Format format, const ReportHead& head, TextOutput& output)
{
    switch (format) {
    case Format::html:
        return MakeHtmlReport(head, output);
    case Format::csv:
        return MakeCsvReport(head, output);
    case Format::json:
        return MakeJsonReport(head, output);
    default:
        return MakeTextReport(head, output);
    }
}

// Tries filters on the rows of --data.
class RowCounter {
public:
    explicit RowCounter(const ReportOptions& options)
        : record(options.data.record), data(OpenRows(options.data, options.host.timeoutSeconds)),
          all(data ? CountAll(*data) : 0)
    {
    }

    std::optional<RowsSeen> RowsOf(const std::string& text)
    {
        if (!data) {
            return std::nullopt;
        }
        const analysis::RowFilter filter = text.empty() ? analysis::RowFilter() : text;
        const auto start = std::chrono::steady_clock::now();
        RowsSeen rows{0, all, {}, {}, 0};
        try {
            rows.visible = data->Count(filter);
            if (record) {
                rows.sees = data->Matches(filter, *record);
            }
        } catch (const analysis::FilterRefused& error) {
            rows.error = error.what();
        }
        rows.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        return rows;
    }

private:
    const std::optional<std::string> record;
    const std::unique_ptr<analysis::DataSource> data; // null: filters are not tried
    const std::uint64_t all;
};

// The rows of the report without what they show of --data, made by a thread: the module composes while an engine
// counts.
class ComposedRows {
public:
    /// The tracer belongs to the thread until the object is destroyed.
    ComposedRows(const ReportOptions& options, analysis::Tracer& tracer, std::size_t fieldCount)
        : thread([this, &options, &tracer, fieldCount] { Compose(options, tracer, fieldCount); })
    {
    }
    ~ComposedRows()
    {
        rows.Cancel();
        thread.join();
    }
    ComposedRows(const ComposedRows&) = delete;
    ComposedRows& operator=(const ComposedRows&) = delete;

    /// No value behind the last user. Throws what the composition of the next row threw.
    std::optional<ReportRow> Next() { return rows.Pop(); }

private:
    struct NotWanted {};

    void Compose(const ReportOptions& options, analysis::Tracer& tracer, std::size_t fieldCount)
    {
        const auto add = [&](const std::string& userName) {
            const analysis::Request request{userName, options.request.ipAddress, options.request.withoutLogin};
            if (!rows.Push(RowOf(AskFor(userName, [&] { return tracer.Explain(request); }), fieldCount))) {
                throw NotWanted();
            }
        };
        std::exception_ptr failure;
        try {
            if (options.usersFrom) {
                ForEachUserOfFile(*options.usersFrom, add);
            } else {
                ForEachUserOfDatabase(options.host, add);
            }
        } catch (const NotWanted&) {
            return;
        } catch (...) {
            failure = std::current_exception();
        }
        rows.End(failure);
    }

    static constexpr std::size_t mostWaiting = 1000;

    BoundedQueue<ReportRow> rows{mostWaiting};
    std::thread thread;
};

RowsSummary WriteRows(const ReportOptions& options, analysis::Tracer& tracer, RowCounter& counter,
                      std::size_t fieldCount, ReportWriter& writer)
{
    RowsSummary summary;
    const bool rowsAppear =
        !options.output && (options.request.format == Format::csv || options.request.format == Format::json);
    Progress progress(rowsAppear);
    ComposedRows rows(options, tracer, fieldCount);
    while (std::optional<ReportRow> row = rows.Next()) {
        row->rows = AskFor(row->user, [&] { return counter.RowsOf(row->filter); });
        summary.Add(*row);
        writer.Add(*row);
        progress.CountOne();
    }
    if (progress.Count() == 0) {
        throw std::runtime_error("the security database holds no user, so there is nothing to report; check the "
                                 "option --security");
    }
    return summary;
}

} // namespace

ExitStatus RunReport(const ReportOptions& options)
{
    RequireUsersFrom(options.usersFrom);
    RequireDataUse(options.data);
    const HostOptions& host = options.host;
    ReportHead head;
    head.repository = host.repository;
    head.ipAddress = options.request.ipAddress;
    head.withoutLogin = options.request.withoutLogin;
    head.showValues = options.showValues;
    head.isFull = options.isFull;
    head.data = ShownRows(options.data);
    head.record = options.data.record;
    head.generated = Now();
    StartLog(host);
    const Candidate candidate = options.request.format == Format::html
                                    ? UseConfigurationWithDigests(host, head.configuration)
                                    : UseConfiguration(host);
    RequireRepository(host.repository, host.configuration);
    head.isForTerminal = !options.output && OutputIsTerminal();
    analysis::Tracer tracer(host.repository);
    for (const auto& rule : tracer.Rules().fields) {
        head.fields.push_back(rule->name);
    }
    Connect(tracer, host);
    if (shownSECM_Connection != nullptr) {
        head.securityDatabase = shownSECM_Connection(host.securityDatabase.c_str());
    }
    RowCounter counter(options);
    if (options.output) {
        RequireNoInput(*options.output, host, candidate.get(), options.usersFrom);
    }
    OutputFile file(options.output);
    FileOutput output(file);

    const std::unique_ptr<ReportWriter> writer = MakeWriter(options.request.format, head, output);
    const RowsSummary rows = WriteRows(options, tracer, counter, head.fields.size(), *writer);
    writer->Finish(rows);
    file.Finish();
    return rows.HasFaults() ? ExitStatus::rulesAreWrong : ExitStatus::success;
}

} // namespace secm::acfilter
