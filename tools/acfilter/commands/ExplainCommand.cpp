#include "tools/acfilter/commands/ExplainCommand.h"

#include "analysis/trace/Tracer.h"
#include "tools/acfilter/cli/TextOption.h"
#include "tools/acfilter/commands/RequestOptions.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/StandardStreams.h"
#include "tools/acfilter/render/Explanation.h"

#include <memory>

namespace secm::acfilter {

namespace {

struct ExplainOptions {
    HostOptions host;
    RequestOptions request;
    bool isFull = false;
    std::vector<std::string> attributes;
    std::vector<std::string> grants;
    std::vector<std::string> revocations;
    std::string user;
};

analysis::WhatIf TriedChanges(const ExplainOptions& options)
{
    analysis::WhatIf tried;
    for (const std::string& text : options.attributes) {
        const auto attribute = analysis::AttributeFrom(text);
        if (!attribute) {
            throw CLI::ValidationError("--attribute", "'" + text + "' is not of the form NAME=VALUE");
        }
        tried.attributes.insert_or_assign(attribute->first, attribute->second);
    }
    for (const std::string& text : options.grants) {
        const auto grant = analysis::GrantFrom(text);
        if (!grant) {
            throw CLI::ValidationError("--grant", "'" + text +
                                                      "' is not of the form NAME:VALUE or NAME:VALUE:RESOURCE"
                                                      " with a value from 0 to 4294967295");
        }
        tried.grants.push_back(*grant);
    }
    for (const std::string& text : options.revocations) {
        tried.revocations.push_back({text});
    }
    return tried;
}

void Explain(const ExplainOptions& options)
{
    analysis::WhatIf tried = TriedChanges(options);
    OutputFile output(std::nullopt);
    ApplyHostOptions(options.host);
    RequireRepository(options.host);
    analysis::Tracer tracer(options.host.repository, std::move(tried));
    Connect(tracer, options.host);

    const analysis::Request request{options.user, options.request.ipAddress, options.request.withoutLogin};
    const analysis::Trace trace = AskFor(options.user, [&] { return tracer.Explain(request); });
    const TextStyle style{options.isFull, OutputTakesColours(), OutputIsTerminal()};
    output.Write(options.request.format == "json" ? ExplanationJson(trace) : ExplanationText(trace, style));
    output.Finish();
}

} // namespace

void AddExplainCommand(CLI::App& app)
{
    CLI::App* command = app.add_subcommand("explain", "Tell how one user's filter comes about, step by step");
    auto options = std::make_shared<ExplainOptions>();
    AddHostOptions(*command, options->host);
    AddRequestOptions(*command, options->request, "text: for people; json: one object, for programs");
    command->add_flag("--full", options->isFull, "Show long lists and texts whole");
    const auto addChange = [&](const char* name, std::vector<std::string>& texts, const char* help, const char* form) {
        AddOption(*command, name, texts, help)->allow_extra_args(false)->type_name(form);
    };
    addChange("--attribute", options->attributes, "As if the user had this attribute", "NAME=VALUE");
    addChange("--grant", options->grants, "As if this were granted too; without a resource, outright",
              "NAME:VALUE[:RESOURCE]");
    addChange("--revoke", options->revocations, "As if this were not granted, neither to the user nor to the group",
              "NAME[:RESOURCE]");
    AddOption(*command, "USER", options->user, "The user's name; one that begins with - after --")
        ->required()
        ->type_name("");
    command->callback([options] { Explain(*options); });
}

} // namespace secm::acfilter
