#include "tests/unit/ScenarioPlayer.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <stdexcept>

namespace secm::testing {

namespace {

using Text = const std::string&;

std::string Joined(const Lines& texts)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += "[" + text + "]";
    }
    return joined;
}

std::string Truth(bool value)
{
    return value ? "true" : "false";
}

// A values function that always returns false, which the manager must not look at.
class OddFunction : public AccessControl_ValuesFunctionInterface {
public:
    static AccessControl_ValuesFunctionInterface* Make() { return new OddFunction; }
    bool Initialize(std::string /*configuration*/) override { return false; }
    bool MapValue(const std::string& value, std::string& mapped) override
    {
        mapped = "odd " + value;
        return false;
    }
};

// The host's own security manager, in which u is logged in.
SecurityManagerInterface* OwnSecurityManager()
{
    OutsideSecurityManager().LogIn(&outside.users.at("u"));
    return &OutsideSecurityManager();
}

std::string Definitions(const WatchedManager& manager)
{
    std::string text;
    for (const auto& field : manager.fieldDefinitions) {
        text += field->permissionName + ":" + std::to_string(field->permissionValue) +
                Joined({field->conditionsDelimiter, field->myField});
        for (const auto& condition : field->conditions) {
            text += " {" + condition.conditionText + " " + Joined(condition.replaceFields);
            for (const auto& [token, flag] : condition.mandatoryFields) {
                text += " " + token + "=" + std::to_string(flag);
            }
            text += condition.valuesFunction ? " mapped}" : "}";
        }
        text += ";";
    }
    return text;
}

std::string Settings(WatchedManager& m)
{
    return Joined({m.filterDelimiter, m.hideAllFilter, m.defaultFilter, m.singleEqualOperator, m.multipleEqualOperator,
                   m.valueMultiplicityDelimiter, m.valueMultiplicityPrefix, m.valueMultiplicitySuffix}) +
           m.GetValueMultiplicityDelimiter();
}

// VALUE|MY_FIELD
std::string OwnValue(WatchedManager& manager, Text valueAndField, SecurityManagerInterface* securityManager)
{
    const Lines parts = Split(valueAndField, "|");
    FieldDefinition field;
    field.myField = parts.at(1);
    std::string value = parts.at(0);
    manager.ReplaceSingleValue(value, field, securityManager);
    return value;
}

// The first condition of the first field, filled for values between ";" ("-": none).
std::string Filled(WatchedManager& manager, Text values, SecurityManagerInterface* securityManager)
{
    const ConditionDefinition& condition = manager.fieldDefinitions.front()->conditions.front();
    return manager.HandleSingleCondition(condition, values == "-" ? Lines() : Split(values, ";"), securityManager);
}

std::string Resources(WatchedManager& manager, unsigned value)
{
    Lines found = {"kept"};
    InMemoryPermissionList list(outside.users.at("u").permissions);
    const bool isAnswered = manager.GetResourcesFromList(&list, "p", value, found);
    // No permission has this name, though some have what stands before its NUL.
    manager.GetResourcesFromList(&list, std::string("p\0a", 3), value, found);
    return Truth(isAnswered) + Joined(found);
}

bool Holds(WatchedManager& manager, const PermissionBase& sought)
{
    InMemoryPermissionList list(outside.users.at("u").permissions);
    return manager.CheckPermissionInList(&list, sought);
}

// A registered values function, NAME|CONFIGURATION|VALUE: what it returns, and what it maps the value to.
std::string Mapped(const WatchedManager& manager, Text functionConfigurationAndValue)
{
    const Lines parts = Split(functionConfigurationAndValue, "|");
    const std::unique_ptr<AccessControl_ValuesFunctionInterface> function(
        manager.valuesFunctionFactories.at(parts.at(0))());
    std::string mapped = "left over";
    const bool isReady = function->Initialize(parts.at(1));
    const bool isMapped = function->MapValue(parts.at(2), mapped);
    return Truth(isReady) + Truth(isMapped) + Joined({mapped});
}

// Each text that the callback is given holds another text before.
std::string CallbackAnswers(AccessControlCallback& c)
{
    c.userName = "u", c.group = "g", c.secondGroup = "s", c.ipAddress = "i";
    bool flag = true;
    std::string texts[6] = {"?", "?", "?", "?", "?", "?"};
    const bool all = c.GetApplicationName(texts[0]) && c.GetUserName(texts[1]) && c.GetAuxiliaryText(texts[2], flag) &&
                     c.GetGroup(texts[3]) && c.GetSecondGroup(texts[4]) && c.GetIpAddress(texts[5]);
    return Truth(all) + Truth(flag) + Joined(Lines(std::begin(texts), std::end(texts)));
}

std::string SplitWith(WatchedManager& manager, Text text)
{
    Lines parts = {"kept"};
    manager.SplitCommaList(text, parts);
    return Joined(parts);
}

using Player = ScenarioPlayer;

// What a scenario asks of the manager.
const std::map<std::string, std::string (*)(Player&, Text)> commands = {
    {"create", [](Player& p,
                  Text name) { return (p.manager = std::make_unique<WatchedManager>(name)), Definitions(*p.manager); }},
    {"destroy", [](Player& p, Text) { return p.manager.reset(), std::string(); }},
    {"settings", [](Player& p, Text) { return Settings(*p.manager); }},
    {"reread", [](Player& p, Text) { return p.manager->ReadConfigurations(), Definitions(*p.manager); }},
    {"clear", [](Player& p, Text) { return p.manager->ClearFieldDefinitions(), Definitions(*p.manager); }},
    {"split", [](Player& p, Text text) { return SplitWith(*p.manager, text); }},
    {"factories", [](Player& p, Text) { return std::to_string(p.manager->valuesFunctionFactories.size()); }},
    {"register",
     [](Player& p, Text name) { return p.manager->RegisterValuesFunction(name, OddFunction::Make), std::string(); }},
    {"registered",
     [](Player& p, Text name) { return Truth(p.manager->valuesFunctionFactories.at(name) != OddFunction::Make); }},
    {"connect", [](Player& p, Text) { return Truth(p.manager->InitSecurityConnection("text", 7)); }},
    {"has-manager", [](Player& p, Text) { return Truth(p.manager->securityManager != nullptr); }},
    {"has-admin", [](Player& p, Text) { return Truth(p.manager->adminInterface != nullptr); }},
    {"login", [](Player& p, Text user) { return p.manager->GetAccessControlFilter(user, "ip"); }},
    {"byname", [](Player& p, Text user) { return p.manager->GetAccessControlFilter(user); }},
    {"given", [](Player& p, Text) { return p.manager->GetAccessControlFilter(OwnSecurityManager()); }},
    {"given-nobody",
     [](Player& p, Text) {
         return p.manager->GetAccessControlFilter(static_cast<SecurityManagerInterface*>(nullptr));
     }},
    {"user-in-callback", [](Player& p, Text) { return p.manager->callback.userName; }},
    {"callback", [](Player& p, Text) { return CallbackAnswers(p.manager->callback); }},
    {"map", [](Player& p, Text text) { return Mapped(*p.manager, text); }},
    {"own", [](Player& p, Text text) { return OwnValue(*p.manager, text, OwnSecurityManager()); }},
    {"own-of-nobody", [](Player& p, Text text) { return OwnValue(*p.manager, text, nullptr); }},
    {"fill", [](Player& p, Text values) { return Filled(*p.manager, values, OwnSecurityManager()); }},
    {"fill-for-nobody", [](Player& p, Text values) { return Filled(*p.manager, values, nullptr); }},
    {"check", [](Player& p, Text sought) { return Truth(Holds(*p.manager, PermissionFrom(sought))); }},
    {"resources",
     [](Player& p, Text value) { return Resources(*p.manager, static_cast<unsigned>(std::stoul(value))); }},
    {"explain", [](Player& p, Text user) { return p.traced.Explained(p.manager->repositoryName, user, false); }},
    {"explain-byname", [](Player& p, Text user) { return p.traced.Explained(p.manager->repositoryName, user, true); }},
    {"watch", [](Player& p, Text) { return Truth(p.traced.Connect(p.manager->repositoryName)); }},
    {"ask", [](Player& p, Text user) { return p.traced.Ask(user, false); }},
    {"ask-byname", [](Player& p, Text user) { return p.traced.Ask(user, true); }},
    {"refusal", [](Player& p, Text user) { return p.traced.Refusal(user); }},
};

// What "no ..." takes away.
const std::map<std::string, void (*)()> takenAway = {
    {"repository services", [] { outside.configuration.exists = false; }},
    {"name lists",
     [] {
         for (auto& [path, names] : outside.configuration.nodes) {
             names.reset();
         }
     }},
    {"security manager", [] { outside.securityManager = Offer::isMissing; }},
    {"security manager connects", [] { outside.securityManager = Offer::refuses; }},
    {"administration", [] { outside.administration = Offer::isMissing; }},
    {"administration connects", [] { outside.administration = Offer::refuses; }},
    {"users", [] { outside.users.clear(); }},
    {"user details", [] { outside.userDetails.nth = Refusal::every; }},
    {"resources", [] { outside.resources.nth = Refusal::every; }},
    {"permission list", [] { outside.permissionLists.nth = Refusal::every; }},
};

// NAME=VALUE
std::pair<std::string, std::string> NameAndValue(Text text)
{
    const std::size_t equal = std::min(text.find('='), text.size());
    return {text.substr(0, equal), text.substr(std::min(equal + 1, text.size()))};
}

void Configure(std::string path, Text value)
{
    if (path.starts_with('@')) {
        path.replace(0, 1, "zarvona\\system\\applications\\securitymanager\\unified_access_control\\");
    }
    outside.configuration.Add(path, Unescaped(value));
}

void Prepare(Player& player, Text what, Text rest)
{
    const auto [name, value] = NameAndValue(rest);
    if (what == "config") {
        Configure(name, value);
    } else if (what == "field") {
        Configure("@fields\\" + name + "\\docs\\permission_name", value);
        Configure("@fields\\" + name + "\\docs\\permission_value", "1");
    } else if (what == "permit") {
        for (auto& [userName, user] : outside.users) {
            user.permissions.push_back(PermissionFrom(rest));
        }
    } else if (what == "attribute") {
        for (auto& [userName, user] : outside.users) {
            user.attributes[name] = value;
        }
    } else if (what == "no") {
        takenAway.at(rest)();
    } else if (what == "level") {
        outside.logLevel = std::stoi(rest);
    } else if (!player.traced.Try(what, rest)) {
        throw std::runtime_error("what is '" + what + "'?");
    }
}

} // namespace

ScenarioPlayer::ScenarioPlayer()
{
    outside = Outside();
    outside.users = {{"u", User("staff", {}, {})}, {"v", User("staff", {}, {})}};
}

void ScenarioPlayer::Do(const std::string& line)
{
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string what = line.substr(0, end);
    const std::string rest = line.substr(std::min(end + 1, line.size()));
    const auto command = commands.find(what);
    if (command != commands.end()) {
        answer = command->second(*this, rest);
    } else {
        Prepare(*this, what, rest);
    }
}

} // namespace secm::testing
