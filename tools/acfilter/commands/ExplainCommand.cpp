#include "tools/acfilter/commands/ExplainCommand.h"

#include "analysis/trace/Tracer.h"
#include "tools/acfilter/commands/Configuration.h"
#include "tools/acfilter/commands/Connection.h"
#include "tools/acfilter/commands/Errors.h"
#include "tools/acfilter/commands/Log.h"
#include "tools/acfilter/commands/TriedChanges.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/StandardStreams.h"
#include "tools/acfilter/render/Explanation.h"

#include <fmt/format.h>

#include <optional>
#include <utility>

namespace secm::acfilter {

namespace {

analysis::WhatIf TriedChanges(const ExplainOptions& options)
{
    analysis::WhatIf tried;
    for (const std::string& text : options.attributes) {
        const auto attribute = AttributeFrom(text);
        if (!attribute) {
            throw UsageError(fmt::format("--attribute: '{}' is not of the form NAME=VALUE", text));
        }
        tried.attributes.insert_or_assign(attribute->first, attribute->second);
    }
    for (const std::string& text : options.grants) {
        const auto grant = GrantFrom(text);
        if (!grant) {
            throw UsageError(fmt::format("--grant: '{}' is not of the form NAME:VALUE or NAME:VALUE:RESOURCE with a "
                                         "value from 0 to 4294967295",
                                         text));
        }
        tried.grants.push_back(*grant);
    }
    for (const std::string& text : options.revocations) {
        tried.revocations.push_back({text});
    }
    return tried;
}

} // namespace

ExitStatus RunExplain(const ExplainOptions& options)
{
    analysis::WhatIf tried = TriedChanges(options);
    OutputFile output(std::nullopt);
    StartLog(options.host);
    UseConfiguration(options.host);
    RequireRepository(options.host.repository, options.host.configuration);
    analysis::Tracer tracer(options.host.repository, std::move(tried));
    Connect(tracer, options.host);

    const analysis::Request request{options.user, options.request.ipAddress, options.request.withoutLogin};
    const analysis::Trace trace = AskFor(options.user, [&] { return tracer.Explain(request); });
    const TextStyle style{options.isFull, OutputTakesColours(), OutputIsTerminal()};
    output.Write(options.request.format == Format::json ? ExplanationJson(trace) : ExplanationText(trace, style));
    output.Finish();
    return ExitStatus::success;
}

} // namespace secm::acfilter
