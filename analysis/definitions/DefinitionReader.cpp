#include "analysis/definitions/DefinitionReader.h"

#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <fmt/core.h>

#include <cstdint>
#include <memory>

namespace secm::analysis {
namespace {

unsigned CountConditions(const CFG_RepositoryServices& definition)
{
    unsigned count = 0;
    while (!TextOf(definition, fmt::format("condition{}", count + 1)).empty()) {
        ++count;
    }
    return count;
}

// In the order of the configuration.
std::vector<CFG_Entry> TablesUnder(const CFG_RepositoryServices& root, const std::string& path)
{
    std::vector<CFG_Entry> found;
    if (CFG_ListEntries != nullptr) {
        found = CFG_ListEntries(path);
        std::erase_if(found, [](const CFG_Entry& entry) { return !entry.isNode; });
        return found;
    }
    const std::unique_ptr<CFG_NameList> names(root.GetChildNames(path));
    for (int index = 0; names && index < names->GetCount(); ++index) {
        CFG_Entry entry;
        entry.name = names->GetName(index);
        found.push_back(entry);
    }
    return found;
}

} // namespace

DefinitionReader::DefinitionReader()
{
    const CFG_RepositoryServices* root = CFG_Factory::GetRepositoryServices();
    if (root == nullptr) {
        return;
    }
    const std::string fields = configuration_paths::fields;
    for (const CFG_Entry& field : TablesUnder(*root, fields)) {
        const std::string path = fields + "\\" + field.name;
        for (const CFG_Entry& repository : TablesUnder(*root, path)) {
            tables[repository.name].push_back({field.name, path + "\\" + repository.name, repository.place});
        }
    }
}

std::vector<DefinitionTable> DefinitionReader::TablesOf(const std::string& repository) const
{
    const auto found = tables.find(repository);
    return found != tables.end() ? found->second : std::vector<DefinitionTable>();
}

std::vector<OmissionReason> ReasonsToOmit(const CFG_RepositoryServices& definition)
{
    std::vector<OmissionReason> reasons;
    const std::unique_ptr<const std::int32_t> permissionValue(definition.GetIntValue("permission_value"));
    const std::string permissionText = TextOf(definition, "permission_value");
    if (!permissionValue && permissionText.empty()) {
        reasons.push_back({"permission_value", "permission_value is missing or empty"});
    } else if (!permissionValue) {
        reasons.push_back({"permission_value", fmt::format("permission_value '{}' is no whole number from -2147483648 "
                                                           "to 4294967295",
                                                           permissionText)});
    }
    if (TextOf(definition, "permission_name").empty()) {
        reasons.push_back({"permission_name", "permission_name is missing or empty"});
    }
    const unsigned conditions = CountConditions(definition);
    if (conditions == 0) {
        reasons.push_back({"condition1", "condition1 is missing or empty"});
    } else if (conditions > 1 && TextOf(definition, "conditions_delimiter").empty()) {
        reasons.push_back(
            {"conditions_delimiter",
             fmt::format("there are {} conditions, and conditions_delimiter is missing or empty", conditions)});
    }
    return reasons;
}

std::string TextOf(const CFG_RepositoryServices& node, const std::string& key)
{
    return static_cast<const char*>(node.GetValue(key, ""));
}

} // namespace secm::analysis
