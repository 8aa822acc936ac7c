#include "fuzz/FilterModel.h"

#include <optional>

namespace secm::fuzzing {

namespace {

using Texts = std::vector<std::string>;

const std::string manager = "SECM_AccessControlManager::";
const std::string connectingLog = manager + "InitSecurityConnection";
const std::string requestLog = manager + "GetAccessControlFilter";
const std::string conditionLog = manager + "HandleSingleCondition";
const std::string valueLog = manager + "ReplaceSingleValue";

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

// Null: there is none.
const testing::User* Find(const testing::Users& users, const std::string& name)
{
    const auto found = users.find(name);
    return found != users.end() ? &found->second : nullptr;
}

// No resource is not the same as an empty one.
std::optional<std::string> ResourceOf(const PermissionBase& permission)
{
    return permission.resource() != nullptr ? std::optional<std::string>(permission.resource()) : std::nullopt;
}

// Null when the user has none.
const std::string* Attribute(const testing::User& user, const std::string& token)
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

void FilterModel::Log(int level, const std::string& function, const std::string& message)
{
    if (level <= world.logLevel) {
        record.push_back(testing::RecordedMessage(level, function, message));
    }
}

bool FilterModel::Connect()
{
    const auto attempt = [this](testing::Offer found, const char* refused, const char* released) {
        if (found == testing::Offer::connects) {
            return true;
        }
        Log(3, connectingLog, refused);
        if (found == testing::Offer::refuses) {
            record.push_back(released);
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
        Log(3, requestLog, "Security manager is not initialized\n");
        return settings.hideAll;
    }
    Log(7, requestLog,
        "Getting Access control filter for user: " + UpToNul(request.user) + ", ip: " + UpToNul(request.address) +
            "\n");
    record.push_back("Login brantor|" + request.user + "||$$$NO_GROUP$$$|$$$NO_GROUP$$$|" + request.address);
    const testing::User* user = Find(world.users, request.user);
    if (user == nullptr) {
        Log(6, requestLog,
            "Security manager is not logged in - User does not exist, no access control will be applied\n");
        return settings.standard;
    }
    Log(7, requestLog, "GetAccessControlFilter - IN\n");
    const std::string filter = Compose(request, *user, false);
    record.push_back("Logout");
    return filter;
}

std::string FilterModel::FilterOfOwnLogin(const Request& request)
{
    Log(7, requestLog, "GetAccessControlFilter - IN\n");
    if (!request.hasInterface) {
        Log(3, requestLog, "secmInterface is null - returning\n");
        return settings.hideAll;
    }
    const testing::User* user = Find(world.users, request.user);
    return Compose(request, user != nullptr ? *user : testing::User(), false);
}

std::string FilterModel::FilterByName(const Request& request)
{
    Log(7, requestLog, "GetAccessControlFilter - IN\n");
    if (!hasAdministration) {
        Log(3, requestLog, "Security manager admin is not initialized\n");
        return settings.hideAll;
    }
    const testing::User* user = Find(world.users, UpToNul(request.user));
    if (user == nullptr || request.missingDetails == 1) {
        Log(6, requestLog, "Couldn't get user details for userName: '" + UpToNul(request.user) + "'\n");
        return settings.standard;
    }
    Log(7, requestLog, "Getting filters for user: " + UpToNul(request.user) + ", group: " + user->group + " ");
    if (!request.hasList) {
        Log(3, requestLog,
            "Couldn't get permission list for user '" + UpToNul(request.user) + "' and group '" + user->group + "'\n");
        return settings.hideAll;
    }
    return Compose(request, *user, true);
}

std::string FilterModel::Compose(const Request& request, const testing::User& user, bool isByName)
{
    unsigned resourceQueries = 0;
    unsigned detailQueries = 0;
    // A request by name asks for the details once, before it composes.
    const auto hasDetails = [&] { return isByName || ++detailQueries != request.missingDetails; };

    std::string filter;
    bool isFirstClause = true;
    for (const Field& field : fields) {
        if (ListHolds(user.permissions, {field.permission.c_str(), field.bits, nullptr, true})) {
            continue;
        }
        if (!isByName && ++resourceQueries == request.failedResources) {
            Log(3, requestLog, "Couldn't get resources for user for permission name: '" + field.permission + "'\n");
            return settings.hideAll;
        }
        Texts values;
        for (std::string value : ListResources(user.permissions, field.permission, field.bits)) {
            if (!hasDetails()) {
                Log(3, valueLog, "userDetails are null");
            } else if (value == "%my%" && !field.myField.empty()) {
                const std::string* attribute = Attribute(user, field.myField);
                value = attribute != nullptr ? *attribute : "";
            }
            if (!value.empty()) {
                values.push_back(value);
            }
        }
        if (values.empty()) {
            Log(7, requestLog, "No values were found for the permission: '" + field.permission + "'\n");
            return settings.hideAll;
        }
        Texts texts;
        for (const Condition& condition : field.conditions) {
            if (!hasDetails()) {
                Log(3, conditionLog, "userDetails are null - returning empty string");
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
    Log(7, requestLog, "GetAccessControlFilter - OUT. Filter: " + UpToNul(filter) + "\n");
    return filter;
}

// The first permission of the same name and resource decides.
bool FilterModel::ListHolds(const std::vector<PermissionBase>& permissions, const PermissionBase& sought) const
{
    const std::string name = sought.name();
    for (const PermissionBase& held : permissions) {
        if (held.name() == name && ResourceOf(held) == ResourceOf(sought)) {
            return (sought.value() & ~held.value()) == 0 && (sought.IsConditional() || !held.IsConditional());
        }
    }
    if (!ResourceOf(sought) || ResourceOf(sought) == "default") {
        return false;
    }
    return ListHolds(permissions, {sought.name(), sought.value(), "default", sought.IsConditional()});
}

Texts FilterModel::ListResources(const std::vector<PermissionBase>& permissions, const std::string& name,
                                 std::uint32_t bits) const
{
    Texts found;
    for (const PermissionBase& held : permissions) {
        if (held.name() == name && (bits & ~held.value()) == 0 && ResourceOf(held)) {
            found.push_back(*ResourceOf(held));
        }
    }
    return found;
}

std::optional<std::string> FilterModel::FilledCondition(std::size_t n, const Texts& values,
                                                        const testing::User& user) const
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

std::string FilterModel::Fill(const Condition& condition, const Texts& values, const testing::User& user) const
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

} // namespace secm::fuzzing
