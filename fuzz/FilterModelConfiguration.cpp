// How the model reads the configuration.
#include "fuzz/FilterModel.h"

namespace secm::fuzzing {

namespace {

using Texts = std::vector<std::string>;

const std::string root = R"(zarvona\system\)";
const std::string access = root + R"(applications\securitymanager\unified_access_control\)";
const std::string issuer = R"(applications\norvale\pix\assigning_authority\value)";

const std::string readingLog = "SECM_AccessControlManager::ReadConfigurations";
const std::string codesLog = "AccessControl_CodesDisplayNameFunction::Initialize";

} // namespace

std::string FilterModel::WholeValue(const std::string& path) const
{
    const auto found = world.configuration.values.find(path);
    return found != world.configuration.values.end() ? found->second : "";
}

std::string FilterModel::Value(const std::string& path) const
{
    return UpToNul(WholeValue(path));
}

Texts FilterModel::Names(const std::string& path) const
{
    const auto found = world.configuration.nodes.find(path);
    return found != world.configuration.nodes.end() ? found->second.value_or(Texts()) : Texts();
}

void FilterModel::ReadConfiguration()
{
    const std::string repository = access + "repositories\\" + world.repository;
    if (!world.configuration.exists) {
        Log(3, readingLog, "Could not create CFG instance\n");
        return;
    }
    if (world.configuration.nodes.count(repository) == 0) {
        Log(7, readingLog, "No access control configurations\n");
        return;
    }
    settings.hideAll = Value(repository + "\\hide_all_filter");
    settings.standard = Value(repository + "\\default_filter");
    settings.fieldDelimiter = Value(repository + "\\filter_delimiter");
    settings.singleOperator = Value(repository + "\\single_equal_operator");
    settings.multipleOperator = Value(repository + "\\multiple_equal_operator");
    settings.listDelimiter = Value(repository + "\\value_multiplicity_delimiter");
    settings.listPrefix = Value(repository + "\\value_multiplicity_prefix");
    settings.listSuffix = Value(repository + "\\value_multiplicity_suffix");
    if (world.configuration.nodes.count(access + "fields") == 0) {
        Log(7, readingLog, "No access control configurations\n");
        return;
    }
    for (const std::string& name : Names(access + "fields")) {
        ReadField(name);
    }
}

void FilterModel::ReadField(const std::string& name)
{
    const std::string path = access + "fields\\" + name + "\\" + world.repository;
    if (world.configuration.nodes.count(path) == 0) {
        return;
    }
    const std::string invalid =
        "Invalid access control configurations under " + name + "\\" + UpToNul(world.repository) + "\n";
    Field field;
    field.permission = Value(path + "\\permission_name");
    field.delimiter = Value(path + "\\conditions_delimiter");
    field.myField = Value(path + "\\my_field");
    const auto bits = world.configuration.values.find(path + "\\permission_value");
    if (bits == world.configuration.values.end()) {
        Log(3, readingLog, invalid);
        return;
    }
    field.bits = static_cast<std::uint32_t>(std::stoi(bits->second));
    field.conditions = ReadConditions(path);
    if (field.conditions.empty() || field.permission.empty() ||
        (field.conditions.size() > 1 && field.delimiter.empty())) {
        Log(3, readingLog, invalid);
        return;
    }
    fields.push_back(field);
}

std::vector<FilterModel::Condition> FilterModel::ReadConditions(const std::string& path)
{
    std::vector<Condition> conditions;
    for (int n = 1;; ++n) {
        const std::string number = std::to_string(n);
        Condition condition;
        condition.text = Value(path + "\\condition" + number);
        if (condition.text.empty()) {
            return conditions;
        }
        condition.mandatory = Split(Value(path + "\\mandatory_fields" + number));
        condition.replace = Split(Value(path + "\\replace_fields" + number));
        const std::string function = Value(path + "\\values_function" + number);
        if (!function.empty()) {
            ReadTable(condition, function, Value(path + "\\values_function_config_string" + number));
        }
        conditions.push_back(condition);
    }
}

void FilterModel::ReadTable(Condition& condition, const std::string& function, const std::string& table)
{
    if (function == "CodeToDisplayName") {
        condition.maps = true;
        const std::string codes = root + "applications\\codes\\" + table;
        if (world.configuration.nodes.count(codes) == 0) {
            Log(7, codesLog, "Couldn't find codes subtree\n");
            return;
        }
        for (const std::string& code : Names(codes)) {
            const std::string name = WholeValue(codes + "\\" + code + "\\display_name");
            if (!code.empty() && !name.empty()) {
                condition.table[code] = name;
            }
        }
    } else if (function == "SiteIdToIssuer") {
        condition.maps = true;
        for (const std::string& site : Names(root + "sites")) {
            const std::string ofSite = WholeValue(root + "sites\\" + site + "\\" + issuer);
            if (!site.empty() && !ofSite.empty()) {
                condition.table[site] = ofSite;
            }
        }
        condition.unknown = Value(root + issuer);
    } else {
        Log(3, readingLog, "Couldn't find values function " + function + "\n");
    }
}

Texts FilterModel::Split(const std::string& list) const
{
    Texts entries;
    std::string entry;
    for (const char character : list + ",") {
        if (character != ',') {
            entry += character;
        } else if (!entry.empty()) {
            entries.push_back(entry);
            entry = "";
        }
    }
    return entries;
}

} // namespace secm::fuzzing
