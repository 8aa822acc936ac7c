// Follows the module's reading, which tells no more than that a definition is invalid.
#include "tools/acfilter/FieldReading.h"

#include "platform/configuration/CFG_RepositoryServices.h"

#include <cstdint>
#include <memory>

namespace {

std::string ReadText(const CFG_RepositoryServices& node, const std::string& key)
{
    return static_cast<const char*>(node.GetValue(key, ""));
}

unsigned CountConditions(const CFG_RepositoryServices& definition)
{
    unsigned count = 0;
    while (!ReadText(definition, "condition" + std::to_string(count + 1)).empty()) {
        ++count;
    }
    return count;
}

} // namespace

std::vector<DiscardReason> DiscardReasons(const CFG_RepositoryServices& definition)
{
    std::vector<DiscardReason> reasons;
    const std::unique_ptr<const std::int32_t> permissionValue(definition.GetIntValue("permission_value"));
    const std::string permissionText = ReadText(definition, "permission_value");
    if (!permissionValue && permissionText.empty()) {
        reasons.push_back({"permission_value", "permission_value is missing or empty"});
    } else if (!permissionValue) {
        reasons.push_back({"permission_value", "permission_value '" + permissionText +
                                                   "' is no whole number from -2147483648 to 4294967295"});
    }
    if (ReadText(definition, "permission_name").empty()) {
        reasons.push_back({"permission_name", "permission_name is missing or empty"});
    }
    const unsigned conditions = CountConditions(definition);
    if (conditions == 0) {
        reasons.push_back({"condition1", "condition1 is missing or empty"});
    } else if (conditions > 1 && ReadText(definition, "conditions_delimiter").empty()) {
        reasons.push_back({"conditions_delimiter", "there are " + std::to_string(conditions) +
                                                       " conditions, and conditions_delimiter is missing or empty"});
    }
    return reasons;
}

std::string InWords(const std::vector<DiscardReason>& reasons)
{
    std::string words;
    for (const DiscardReason& reason : reasons) {
        words += (words.empty() ? "" : "; ") + reason.text;
    }
    return words;
}
