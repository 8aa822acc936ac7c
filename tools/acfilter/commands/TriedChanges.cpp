#include "tools/acfilter/commands/TriedChanges.h"

#include "tools/acfilter/commands/Errors.h"

#include <fmt/format.h>

#include <charconv>

namespace secm::acfilter {

std::optional<std::pair<std::string, std::string>> AttributeFrom(const std::string& text)
{
    const std::size_t equalSign = text.find('=');
    if (equalSign == std::string::npos || equalSign == 0) {
        return std::nullopt;
    }
    return std::pair(text.substr(0, equalSign), text.substr(equalSign + 1));
}

std::optional<PermissionBase> GrantFrom(const std::string& text)
{
    // A name may hold colons: the value is the first number that stands between two, or between one and the end.
    for (std::size_t colon = text.find(':'); colon != std::string::npos; colon = text.find(':', colon + 1)) {
        unsigned value = 0;
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data() + colon + 1, end, value);
        if (colon == 0 || (stop != end && *stop != ':')) {
            continue; // not where a value stands
        }
        if (error == std::errc::result_out_of_range) {
            return std::nullopt; // a mistyped value is no part of the name
        }
        if (error == std::errc()) {
            const char* resource = stop == end ? nullptr : stop + 1;
            return PermissionBase(text.substr(0, colon).c_str(), value, resource, false);
        }
    }
    return std::nullopt;
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

} // namespace secm::acfilter
