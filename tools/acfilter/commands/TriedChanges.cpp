#include "tools/acfilter/commands/TriedChanges.h"

#include "analysis/trace/GrantText.h"
#include "tools/acfilter/commands/Errors.h"

#include <fmt/format.h>

namespace secm::acfilter {

std::optional<std::pair<std::string, std::string>> AttributeFrom(const std::string& text)
{
    const std::size_t equalSign = text.find('=');
    if (equalSign == std::string::npos || equalSign == 0) {
        return std::nullopt;
    }
    return std::pair(text.substr(0, equalSign), text.substr(equalSign + 1));
}

analysis::WhatIf WhatIfFrom(const ChangeOptions& options)
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
        const auto grant = analysis::GrantFrom(text);
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

} // namespace secm::acfilter
