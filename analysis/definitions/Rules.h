// The rules of one repository as the module reads them, with the names and places that the module does not keep.
#pragma once

#include "analysis/Export.h"
#include "platform/configuration/CFG_Listing.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace secm::analysis {

/// The settings of a repository. A missing one is empty.
struct FilterSettings {
    std::string hideAllFilter;
    std::string defaultFilter;
    std::string filterDelimiter;
    std::string singleEqualOperator;
    std::string multipleEqualOperator;
    std::string valueMultiplicityDelimiter;
    std::string valueMultiplicityPrefix;
    std::string valueMultiplicitySuffix;
};

/// One condition of a field.
struct ConditionRule {
    unsigned number = 0;                      ///< N of its key, conditionN.
    std::string text;                         ///< The template.
    std::vector<std::string> replaceTokens;   ///< As configured, duplicates kept.
    std::vector<std::string> mandatoryTokens; ///< Sorted, each once.
    std::string function;                     ///< The name of its values function, known or not; empty: none.
    std::string functionConfiguration;
    bool isMapped = false; ///< The module has a values function of that name.

    bool operator==(const ConditionRule&) const = default;
};

/// Why the module leaves a definition out.
struct OmissionReason {
    std::string key; ///< The key that is missing or wrong.
    std::string text;
};

/// How one field restricts the users of one repository.
struct FieldRule {
    std::string name;
    std::string path;                    ///< Of its table in the configuration.
    CFG_Place place;                     ///< Of its table; no file when CFG_ListEntries is null.
    std::vector<OmissionReason> omitted; ///< In the order of the module's reading; empty: the field is in force.

    // Of a field that is in force.
    std::string permissionName;
    std::uint32_t permissionValue = 0;
    std::string conditionsDelimiter;
    std::string myField;
    std::vector<ConditionRule> conditions;
};

/// All rules of one repository. Owns its texts, so it stays valid when the configuration is reloaded. Immutable: any
/// thread may read it.
struct RepositoryRules {
    std::string repository;
    FilterSettings settings;
    std::vector<std::shared_ptr<const FieldRule>> fields; ///< Those in force, in the order of the configuration.
    std::vector<std::shared_ptr<const FieldRule>> all;    ///< Also those that are left out, in the same order.
};

/// The texts of `reasons`, separated by "; ".
SECM_ANALYSIS_EXPORT std::string InWords(const std::vector<OmissionReason>& reasons);

} // namespace secm::analysis
