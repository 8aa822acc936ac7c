#include "tools/acfilter/ExplainCommand.h"

#include "tools/acfilter/ExplainingManager.h"
#include "tools/acfilter/Explanation.h"
#include "tools/acfilter/Output.h"
#include "tools/acfilter/OutputFile.h"
#include "tools/acfilter/RequestOptions.h"
#include "tools/acfilter/TextOption.h"

#include <memory>

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

WhatIf TriedChanges(const ExplainOptions& options)
{
    WhatIf tried;
    for (const std::string& text : options.attributes) {
        const auto attribute = AttributeFrom(text);
        if (!attribute) {
            throw CLI::ValidationError("--attribute", "'" + text + "' is not of the form NAME=VALUE");
        }
        tried.attributes.insert_or_assign(attribute->first, attribute->second);
    }
    for (const std::string& text : options.grants) {
        const auto grant = GrantFrom(text);
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
    WhatIf tried = TriedChanges(options);
    OutputFile output(std::nullopt);
    ApplyHostOptions(options.host);
    RequireRepository(options.host);
    ExplainingManager manager(options.host.repository, std::move(tried));
    Connect(manager, options.host);

    const Request request{options.user, options.request.ipAddress, options.request.withoutLogin};
    Account account = AskFor(options.user, [&] { return manager.Explain(request); });
    const Explanation explanation{options.host.repository, std::move(account),
                                  NamesOfDefinitions(options.host.repository), manager.Tried()};
    const TextStyle style{options.isFull, OutputTakesColours(), OutputIsTerminal()};
    output.Write(options.request.format == "json" ? ExplanationJson(explanation) : ExplanationText(explanation, style));
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
