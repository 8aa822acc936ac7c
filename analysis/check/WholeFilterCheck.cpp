// The two filters that stand alone, hide_all_filter and default_filter, and what both may have wrong.
#include "analysis/check/CheckRules.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/QueryText.h"
#include "analysis/check/UnpairedMark.h"

#include <fmt/core.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace secm::analysis {

namespace {

void ShowsEverything(const CheckedRepository& repository, FindingSink& sink)
{
    const FilterSettings& settings = repository.Rules().settings;
    if (MatchesEveryRecord(settings.hideAllFilter)) {
        sink.Error("AC038", repository.table.PlaceOf("hide_all_filter"),
                   fmt::format("every record matches hide_all_filter '{}'", settings.hideAllFilter),
                   "users for whom a restriction cannot be written, such as those whom nobody granted a value, see "
                   "every record",
                   "write a filter that no record matches, such as hide_all_filter = \"1 = 0\"");
    }
    if (MatchesEveryRecord(settings.defaultFilter)) {
        sink.Warn("AC039", repository.table.PlaceOf("default_filter"),
                  fmt::format("every record matches default_filter '{}'", settings.defaultFilter),
                  "users whom the security database does not know see every record",
                  "write what such users may see, such as default_filter = \"0 = 1\" for nothing");
    }
}

void UnpairedInFilters(const CheckedRepository& repository, FindingSink& sink)
{
    const FilterSettings& settings = repository.Rules().settings;
    for (const auto& [key, filter] :
         {std::pair("hide_all_filter", settings.hideAllFilter), std::pair("default_filter", settings.defaultFilter)}) {
        if (const auto unpaired = FindUnpaired(filter)) {
            ReportUnpaired(*unpaired, filter, key, repository.table.PlaceOf(key), sink);
        }
    }
}

void HoldsPlaceholders(const CheckedTable& table, const char* key, FindingSink& sink)
{
    const std::string text = table.Text(key);
    for (const std::string_view placeholder : {valuesPlaceholder, equalOperatorPlaceholder, ownValue}) {
        if (text.find(placeholder) != std::string::npos) {
            sink.Error("AC061", table.PlaceOf(key), fmt::format("{} has {}", key, placeholder),
                       "it is replaced in conditions only: it stays in users' filters as it is written",
                       fmt::format("write {} without it; values of users belong into conditionN of a field", key));
            return;
        }
    }
}

void PlaceholdersOutsideConditions(const CheckedRepository& repository, FindingSink& sink)
{
    for (const char* key : {"hide_all_filter", "default_filter", "filter_delimiter"}) {
        HoldsPlaceholders(repository.table, key, sink);
    }
    for (const CheckedDefinition& definition : repository.definitions) {
        HoldsPlaceholders(definition.table, "conditions_delimiter", sink);
    }
}

} // namespace

void ReportUnpaired(const Unpaired& unpaired, std::string_view text, const std::string& key, const CFG_Place& place,
                    FindingSink& sink)
{
    const auto isFirstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; };
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(unpaired.position);
    const bool isQuote = std::string_view("([{}])").find(unpaired.mark) == std::string_view::npos;
    sink.Error("AC015", place,
               fmt::format("the {} {} at character {} of {} is not {}", isQuote ? "quote" : "bracket", unpaired.mark,
                           std::count_if(text.begin(), end, isFirstByte) + 1, key,
                           unpaired.isOpen ? "closed" : "opened"),
               "users' filters break, or the host's query reads other records with what follows",
               unpaired.isOpen ? "close it, or remove it" : "open it before, or remove it");
}

void CheckWholeFilters(const CheckedRepository& repository, FindingSink& sink)
{
    for (const auto rule : {ShowsEverything, UnpairedInFilters, PlaceholdersOutsideConditions}) {
        rule(repository, sink);
    }
}

} // namespace secm::analysis
