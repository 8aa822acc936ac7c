// Reads a repository's settings and field definitions once, when a manager is created. An invalid definition is
// logged and left out; it does not affect the others.
#include "SECM_AccessControl/SECM_AccessControlManager.h"

#include "SECM_AccessControl/Log.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <algorithm>
#include <optional>

namespace {

constexpr secm::LogOrigin readingLog{secm::managerSourceFile, "SECM_AccessControlManager::ReadConfigurations"};

// A text ends at its first NUL; a missing one is empty.
std::string ReadText(const CFG_RepositoryServices& node, const std::string& key)
{
    return static_cast<const char*>(node.GetValue(key, ""));
}

// An integer, reinterpreted as a set of 32 bits.
std::optional<std::uint32_t> ReadBits(const CFG_RepositoryServices& node, const char* key)
{
    const std::unique_ptr<const std::int32_t> integer(node.GetIntValue(key));
    return integer ? std::optional(static_cast<std::uint32_t>(*integer)) : std::nullopt;
}

} // namespace

void SECM_AccessControlManager::ReadConfigurations()
{
    ClearFieldDefinitions();

    const CFG_RepositoryServices* root = CFG_Factory::GetRepositoryServices();
    if (root == nullptr) {
        SECM_LOG(readingLog, failureLevel, "Could not create CFG instance\n");
        return;
    }
    const std::unique_ptr<CFG_RepositoryServices> repository(
        root->GetSubTree(RWCString(secm::configuration_paths::repositories + repositoryName)));
    if (!repository) {
        SECM_LOG(readingLog, traceLevel, "No access control configurations\n");
        return;
    }
    hideAllFilter = ReadText(*repository, "hide_all_filter");
    defaultFilter = ReadText(*repository, "default_filter");
    filterDelimiter = ReadText(*repository, "filter_delimiter");
    singleEqualOperator = ReadText(*repository, "single_equal_operator");
    multipleEqualOperator = ReadText(*repository, "multiple_equal_operator");
    valueMultiplicityDelimiter = ReadText(*repository, "value_multiplicity_delimiter");
    valueMultiplicityPrefix = ReadText(*repository, "value_multiplicity_prefix");
    valueMultiplicitySuffix = ReadText(*repository, "value_multiplicity_suffix");

    const std::unique_ptr<CFG_RepositoryServices> fields(root->GetSubTree(secm::configuration_paths::fields));
    if (!fields) {
        SECM_LOG(readingLog, traceLevel, "No access control configurations\n");
        return;
    }
    const std::unique_ptr<CFG_NameList> names(fields->GetChildNames(""));
    const int count = names ? names->GetCount() : 0;
    for (int index = 0; index < count; ++index) {
        const std::string fieldName = names->GetName(index);
        ReadField(*fields, fieldName);
    }
}

void SECM_AccessControlManager::ReadField(const CFG_RepositoryServices& fields, const std::string& fieldName)
{
    const std::unique_ptr<CFG_RepositoryServices> node(fields.GetSubTree(RWCString(fieldName + "\\" + repositoryName)));
    if (!node) {
        return; // the field does not apply to this repository
    }
    auto field = std::make_unique<FieldDefinition>();
    if (ReadDefinition(*node, *field)) {
        fieldDefinitions.push_back(std::move(field));
    } else {
        SECM_LOG(readingLog, failureLevel, "Invalid access control configurations under %s\\%s\n", fieldName.c_str(),
                 repositoryName.c_str());
    }
}

bool SECM_AccessControlManager::ReadDefinition(const CFG_RepositoryServices& node, FieldDefinition& field)
{
    field.permissionName = ReadText(node, "permission_name");
    field.conditionsDelimiter = ReadText(node, "conditions_delimiter");
    field.myField = ReadText(node, "my_field");
    const std::optional<std::uint32_t> permissionValue = ReadBits(node, "permission_value");
    if (!permissionValue) {
        return false;
    }
    field.permissionValue = *permissionValue;
    ReadConditions(node, field.conditions);
    return !field.conditions.empty() && !field.permissionName.empty() &&
           (field.conditions.size() == 1 || !field.conditionsDelimiter.empty());
}

void SECM_AccessControlManager::ReadConditions(const CFG_RepositoryServices& node,
                                               std::vector<ConditionDefinition>& conditions)
{
    for (unsigned n = 1;; ++n) {
        const std::string number = std::to_string(n);
        std::string conditionText = ReadText(node, "condition" + number);
        if (conditionText.empty()) {
            return;
        }
        const std::string mandatoryText = ReadText(node, "mandatory_fields" + number);
        const std::string replaceText = ReadText(node, "replace_fields" + number);

        ConditionDefinition& condition = conditions.emplace_back();
        condition.conditionText = std::move(conditionText);
        std::vector<std::string> mandatory;
        SplitCommaList(mandatoryText, mandatory);
        SplitCommaList(replaceText, condition.replaceFields);
        for (std::string& token : mandatory) {
            condition.mandatoryFields.insert_or_assign(std::move(token), 1);
        }
        BindValuesFunction(node, number, condition);
    }
}

void SECM_AccessControlManager::BindValuesFunction(const CFG_RepositoryServices& node, const std::string& number,
                                                   ConditionDefinition& condition)
{
    const std::string name = ReadText(node, "values_function" + number);
    if (name.empty()) {
        return;
    }
    const auto registered = valuesFunctionFactories.find(name);
    if (registered == valuesFunctionFactories.end()) {
        SECM_LOG(readingLog, failureLevel, "Couldn't find values function %s\n", name.c_str());
        return;
    }
    std::string configuration = ReadText(node, "values_function_config_string" + number);
    condition.valuesFunction.reset(registered->second());
    condition.valuesFunction->Initialize(std::move(configuration));
}

void SECM_AccessControlManager::ClearFieldDefinitions()
{
    fieldDefinitions.clear();
}

void SECM_AccessControlManager::SplitCommaList(const std::string& text, std::vector<std::string>& entries)
{
    std::size_t start = 0;
    while ((start = text.find_first_not_of(',', start)) != std::string::npos) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        entries.push_back(text.substr(start, end - start));
        start = end;
    }
}
