#include "tools/acfilter/DefinitionNames.h"

#include "SECM_AccessControl/ConfigurationPaths.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "tools/acfilter/FieldReading.h"

#include <memory>

namespace {

std::vector<FunctionName> FunctionsOf(const CFG_RepositoryServices& definition)
{
    const auto text = [&](const std::string& key) -> std::string {
        return static_cast<const char*>(definition.GetValue(key, ""));
    };
    std::vector<FunctionName> functions;
    for (unsigned n = 1; !text("condition" + std::to_string(n)).empty(); ++n) {
        const std::string number = std::to_string(n);
        functions.push_back({text("values_function" + number), text("values_function_config_string" + number)});
    }
    return functions;
}

} // namespace

std::vector<DefinitionNames> NamesOfDefinitions(const std::string& repositoryName)
{
    std::vector<DefinitionNames> definitions;
    const CFG_RepositoryServices* root = CFG_Factory::GetRepositoryServices();
    const std::unique_ptr<CFG_NameList> fields(root->GetChildNames(configuration_paths::fields));
    for (int index = 0; fields && index < fields->GetCount(); ++index) {
        const std::string field = fields->GetName(index);
        const std::string path = std::string(configuration_paths::fields) + "\\" + field + "\\" + repositoryName;
        const std::unique_ptr<CFG_RepositoryServices> definition(root->GetSubTree(path));
        if (definition && DiscardReasons(*definition).empty()) {
            definitions.push_back({field, FunctionsOf(*definition)});
        }
    }
    return definitions;
}
