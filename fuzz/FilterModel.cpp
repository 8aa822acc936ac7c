#include "fuzz/FilterModel.h"

namespace {

using Texts = std::vector<std::string>;

const std::string root = R"(zarvona\system\)";
const std::string access = root + R"(applications\securitymanager\unified_access_control\)";
const std::string issuer = R"(applications\norvale\pix\assigning_authority\value)";

std::string UpToNul(const std::string& text)
{
    return text.substr(0, text.find('\0'));
}

bool Contains(const Texts& texts, const std::string& sought)
{
    for (const std::string& text : texts) {
        if (text == sought) {
            return true;
        }
    }
    return false;
}

void ReplaceFirst(std::string& text, const std::string& pattern, const std::string& replacement)
{
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text.substr(at, pattern.size()) == pattern) {
            text = text.substr(0, at) + replacement + text.substr(at + pattern.size());
            return;
        }
    }
}

// Null when the user has none.
const std::string* Attribute(const User& user, const std::string& token)
{
    std::string name = token;
    if (!name.empty()) {
        name.erase(0, 1);
    }
    if (!name.empty()) {
        name.erase(name.size() - 1);
    }
    const auto found = user.attributes.find(name);
    return found != user.attributes.end() ? &found->second : nullptr;
}

} // namespace

FilterModel::FilterModel(const Case& ofCase) : world(ofCase)
{
    ReadConfiguration();
}

void FilterModel::Say(int level, const std::string& message)
{
    if (level <= world.logLevel) {
        journal.push_back(std::to_string(level) + " " + message);
    }
}

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
    if (found == world.configuration.nodes.end() || world.configuration.withoutNames.count(path) != 0) {
        return {};
    }
    return found->second;
}

void FilterModel::ReadConfiguration()
{
    const std::string repository = access + "repositories\\" + world.repository;
    if (!world.configuration.exists) {
        Say(3, "Could not create CFG instance\n");
        return;
    }
    if (world.configuration.nodes.count(repository) == 0) {
        Say(7, "No access control configurations\n");
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
        Say(7, "No access control configurations\n");
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
    const auto bits = world.configuration.integers.find(path + "\\permission_value");
    if (bits == world.configuration.integers.end()) {
        Say(3, invalid);
        return;
    }
    field.bits = static_cast<std::uint32_t>(bits->second);
    field.conditions = ReadConditions(path);
    if (field.conditions.empty() || field.permission.empty() ||
        (field.conditions.size() > 1 && field.delimiter.empty())) {
        Say(3, invalid);
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
            Say(7, "Couldn't find codes subtree\n");
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
        Say(3, "Couldn't find values function " + function + "\n");
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

bool FilterModel::Connect()
{
    const auto attempt = [this](Interface found, const char* refused, const char* released) {
        if (found == Interface::connects) {
            return true;
        }
        Say(3, refused);
        if (found == Interface::refuses) {
            journal.push_back(released);
        }
        return false;
    };
    hasSecurityManager = attempt(world.securityManager, "Failed to initialize security manager for access control\n",
                                 "release security manager");
    hasAdministration = hasSecurityManager && attempt(world.administration,
                                                      "Failed to initialize security manager admin for access "
                                                      "control\n",
                                                      "release administration");
    return hasAdministration;
}

std::string FilterModel::Filter(const Request& request)
{
    switch (request.road) {
    case Road::login:
        return FilterByLogin(request);
    case Road::ownLogin:
        return FilterOfOwnLogin(request);
    default:
        return FilterByName(request);
    }
}

std::string FilterModel::FilterByLogin(const Request& request)
{
    if (!hasSecurityManager) {
        Say(3, "Security manager is not initialized\n");
        return settings.hideAll;
    }
    Say(7, "Getting Access control filter for user: " + UpToNul(request.user) + ", ip: " + UpToNul(request.address) +
               "\n");
    journal.push_back("login brantor|" + request.user + "||$$$NO_GROUP$$$|$$$NO_GROUP$$$|" + request.address);
    const User* user = world.FindUser(request.user);
    if (user == nullptr) {
        Say(6, "Security manager is not logged in - User does not exist, no access control will be applied\n");
        return settings.standard;
    }
    Say(7, "GetAccessControlFilter - IN\n");
    const std::string filter = Compose(request, *user, false);
    journal.push_back("logout");
    return filter;
}

std::string FilterModel::FilterOfOwnLogin(const Request& request)
{
    Say(7, "GetAccessControlFilter - IN\n");
    if (!request.hasInterface) {
        Say(3, "secmInterface is null - returning\n");
        return settings.hideAll;
    }
    const User* user = world.FindUser(request.user);
    return Compose(request, user != nullptr ? *user : User(), false);
}

std::string FilterModel::FilterByName(const Request& request)
{
    Say(7, "GetAccessControlFilter - IN\n");
    if (!hasAdministration) {
        Say(3, "Security manager admin is not initialized\n");
        return settings.hideAll;
    }
    const User* user = world.FindUser(request.user);
    if (user == nullptr || request.missingDetails == 1) {
        Say(6, "Couldn't get user details for userName: '" + UpToNul(request.user) + "'\n");
        return settings.standard;
    }
    Say(7, "Getting filters for user: " + UpToNul(request.user) + ", group: " + user->group + " ");
    if (!request.hasList) {
        Say(3,
            "Couldn't get permission list for user '" + UpToNul(request.user) + "' and group '" + user->group + "'\n");
        return settings.hideAll;
    }
    const std::string filter = Compose(request, *user, true);
    journal.push_back("delete permission list");
    return filter;
}

std::string FilterModel::Compose(const Request& request, const User& user, bool isByName)
{
    unsigned resourceQueries = 0;
    unsigned detailQueries = 0;
    // By name, they were asked for once.
    const auto hasDetails = [&] { return isByName || ++detailQueries != request.missingDetails; };

    std::string filter;
    bool isFirstClause = true;
    for (const Field& field : fields) {
        if (ListHolds(user.grants, {field.permission, field.bits, std::nullopt, true})) {
            continue;
        }
        if (!isByName && ++resourceQueries == request.failedResources) {
            Say(3, "Couldn't get resources for user for permission name: '" + field.permission + "'\n");
            return settings.hideAll;
        }
        Texts values;
        for (std::string value : ListResources(user.grants, field.permission, field.bits)) {
            if (!hasDetails()) {
                Say(3, "userDetails are null");
            } else if (value == "%my%" && !field.myField.empty()) {
                const std::string* attribute = Attribute(user, field.myField);
                value = attribute != nullptr ? *attribute : "";
            }
            if (!value.empty()) {
                values.push_back(value);
            }
        }
        if (values.empty()) {
            Say(7, "No values were found for the permission: '" + field.permission + "'\n");
            return settings.hideAll;
        }
        Texts texts;
        for (const Condition& condition : field.conditions) {
            if (!hasDetails()) {
                Say(3, "userDetails are null - returning empty string");
                continue;
            }
            const std::string text = Fill(condition, values, user);
            if (!text.empty()) {
                texts.push_back(text);
            }
        }
        if (texts.empty()) {
            continue;
        }
        std::string clause = texts[0];
        for (std::size_t n = 1; n < texts.size(); ++n) {
            clause = clause + field.delimiter + texts[n];
        }
        if (texts.size() > 1) {
            clause = "(" + clause + ")";
        }
        filter = isFirstClause ? clause : filter + settings.fieldDelimiter + clause;
        isFirstClause = false;
    }
    Say(7, "GetAccessControlFilter - OUT. Filter: " + UpToNul(filter) + "\n");
    return filter;
}

// The first grant of the same name and resource decides.
bool FilterModel::ListHolds(const std::vector<Grant>& grants, const Grant& sought) const
{
    for (const Grant& grant : grants) {
        if (grant.name == sought.name && grant.resource == sought.resource) {
            return (sought.value & ~grant.value) == 0 && (sought.isConditional || !grant.isConditional);
        }
    }
    if (!sought.resource || sought.resource == "default") {
        return false;
    }
    return ListHolds(grants, {sought.name, sought.value, "default", sought.isConditional});
}

Texts FilterModel::ListResources(const std::vector<Grant>& grants, const std::string& name, std::uint32_t bits) const
{
    Texts found;
    for (const Grant& grant : grants) {
        if (grant.name == name && (bits & ~grant.value) == 0 && grant.resource) {
            found.push_back(*grant.resource);
        }
    }
    return found;
}

std::optional<std::string> FilterModel::FilledCondition(std::size_t n, const Texts& values, const User& user) const
{
    for (const Field& field : fields) {
        if (n < field.conditions.size()) {
            return Fill(field.conditions[n], values, user);
        }
        n -= field.conditions.size();
    }
    return std::nullopt;
}

std::string FilterModel::Map(const Condition& condition, const std::string& value) const
{
    if (!condition.maps) {
        return value;
    }
    const auto found = condition.table.find(value);
    return found != condition.table.end() ? found->second : condition.unknown;
}

std::string FilterModel::Fill(const Condition& condition, const Texts& values, const User& user) const
{
    std::string text = condition.text;
    if (values.size() != 1) {
        std::string list;
        for (std::size_t n = 0; n < values.size(); ++n) {
            list = list + (n == 0 ? "" : settings.listDelimiter) + Map(condition, values[n]);
        }
        ReplaceFirst(text, "%values%", settings.listPrefix + list + settings.listSuffix);
        ReplaceFirst(text, "%equal_operator%", settings.multipleOperator);
        return text;
    }
    const std::string value = Map(condition, values[0]);
    if (value != "%my%") {
        ReplaceFirst(text, "%values%", value);
        ReplaceFirst(text, "%equal_operator%", settings.singleOperator);
        return text;
    }
    for (const std::string& token : condition.replace) {
        if (token[0] != '$' || token[token.size() - 1] != '$') {
            continue;
        }
        const std::string* attribute = Attribute(user, token);
        if (attribute == nullptr && Contains(condition.mandatory, token)) {
            return "";
        }
        ReplaceFirst(text, token, attribute != nullptr ? *attribute : "");
    }
    ReplaceFirst(text, "%equal_operator%", settings.singleOperator);
    return text;
}
