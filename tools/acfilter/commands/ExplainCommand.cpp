#include "tools/acfilter/commands/ExplainCommand.h"

#include "analysis/check/ChangeCheck.h"
#include "analysis/trace/GrantOrigins.h"
#include "analysis/trace/Tracer.h"
#include "platform/security_manager/SECM_Listing.h"
#include "tools/acfilter/commands/Configuration.h"
#include "tools/acfilter/commands/Connection.h"
#include "tools/acfilter/commands/Errors.h"
#include "tools/acfilter/commands/Log.h"
#include "tools/acfilter/commands/RowData.h"
#include "tools/acfilter/commands/TriedChanges.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/StandardStreams.h"
#include "tools/acfilter/render/Explanation.h"

#include <optional>
#include <utility>

namespace secm::acfilter {

namespace {

RowsSeen RowsOf(analysis::DataSource& data, const analysis::Answer& answer)
{
    RowsSeen rows{0, CountAll(data), {}, {}, 0};
    try {
        rows.visible = data.Count(analysis::RowFilterOf(answer));
    } catch (const analysis::FilterRefused& error) {
        rows.error = error.what();
    }
    return rows;
}

// `data` is null when the filter is not tried on rows.
Explanation Explained(analysis::Tracer& tracer, const analysis::Request& request, const ExplainOptions& options,
                      analysis::DataSource* data)
{
    const HostOptions& host = options.host;
    Explanation explanation;
    explanation.trace = tracer.ExplainAll(request);
    if (data != nullptr) {
        explanation.rows = RowsOf(*data, explanation.trace.answer);
        if (options.data.record) {
            explanation.record = analysis::ExplainRecord(explanation.trace, *data, *options.data.record);
        }
    }
    if (openSECM_Listing != nullptr) {
        const auto listing = openSECM_Listing(host.securityDatabase.c_str(), host.timeoutSeconds);
        explanation.grants = analysis::GrantsOf(explanation.trace, *listing);
    }
    explanation.notes = analysis::ChangesWithoutEffect(tracer.Rules(), explanation.trace.tried);
    return explanation;
}

} // namespace

ExitStatus RunExplain(const ExplainOptions& options)
{
    analysis::WhatIf tried = WhatIfFrom(options.changes);
    RequireDataUse(options.data);
    OutputFile output(std::nullopt);
    StartLog(options.host);
    UseConfiguration(options.host);
    RequireRepository(options.host.repository, options.host.configuration);
    analysis::Tracer tracer(options.host.repository, std::move(tried));
    Connect(tracer, options.host);
    const auto data = OpenRows(options.data, options.host.timeoutSeconds);

    const analysis::Request request{options.user, options.request.ipAddress, options.request.withoutLogin};
    const Explanation explanation =
        AskFor(options.user, [&] { return Explained(tracer, request, options, data.get()); });
    const TextStyle style{options.isFull, OutputTakesColours(), OutputIsTerminal()};
    output.Write(options.request.format == Format::json ? ExplanationJson(explanation)
                                                        : ExplanationText(explanation, style));
    output.Finish();
    return ExitStatus::success;
}

} // namespace secm::acfilter
