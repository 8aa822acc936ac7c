// Whole lives of a manager, played from a text: what stands in the configuration and what the platform
// answers, then what is asked of the manager, each with the answer ("= ") and everything that went outside
// meanwhile ("> ").
#include "analysis/trace/Tracer.h"
#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "tests/Permissions.h"
#include "tests/unit/FailingAllocation.h"
#include "tests/unit/ScriptedPlatform.h"
#include "tools/acfilter/render/Explanation.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace {

using namespace secm::testing;

using namespace secm::analysis;
using namespace secm::acfilter;

std::string Joined(const Lines& texts)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += "[" + text + "]";
    }
    return joined;
}

// Whose answers nobody may rely on.
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

class Player {
public:
    /// Does what `line` says; a command leaves its answer behind.
    void Do(const std::string& line)
    {
        const std::size_t end = std::min(line.find(' '), line.size() - 1);
        const std::string rest = line.substr(end + 1);
        const auto command = commands.find(line.substr(0, line.find(' ')));
        if (command != commands.end()) {
            answer = command->second(rest);
        } else {
            Prepare(line.substr(0, end), rest);
        }
    }

    /// The filter that a manager which keeps account of its steps answers to a request.
    std::string Watched(const std::string& request) const
    {
        const bool isByName = request.starts_with("byname");
        Tracer explaining(manager->repositoryName);
        explaining.Connect("text", 7);
        return explaining.Explain({request.substr(isByName ? 7 : 6), "ip", isByName}).answer.filter;
    }

    bool IsConnected() const { return manager->securityManager != nullptr && manager->adminInterface != nullptr; }

    std::string answer;

private:
    void Prepare(const std::string& what, const std::string& rest)
    {
        const std::size_t equal = std::min(rest.find('='), rest.size());
        const std::string name = rest.substr(0, equal);
        const std::string value = rest.substr(std::min(equal + 1, rest.size()));
        if (what == "config") {
            const std::string top = "zarvona\\system\\applications\\securitymanager\\unified_access_control\\";
            script.configuration[name.starts_with('@') ? top + name.substr(1) : name] = Unescaped(value);
        } else if (what == "permit") {
            script.permissions.push_back(PermissionFrom(rest));
        } else if (what == "attribute") {
            script.attributes[name] = value;
        } else if (what == "no") {
            script.answers[rest] = false;
        } else if (what == "level") {
            script.logLevel = std::stoi(rest);
        } else if (what == "try-attribute") {
            tried.attributes.insert(AttributeFrom(rest).value());
        } else if (what == "try-grant") {
            tried.grants.push_back(GrantFrom(rest).value());
        } else if (what == "try-revoke") {
            tried.revocations.push_back({rest});
        } else {
            throw std::runtime_error("what is '" + what + "'?");
        }
    }

    static std::string Truth(bool value) { return value ? "true" : "false"; }

    std::string Definitions() const
    {
        std::string text;
        for (const auto& field : manager->fieldDefinitions) {
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

    std::string OwnValue(const std::string& text, SecurityManagerInterface* securityManager) const
    {
        const Lines valueAndField = Split(text, "|");
        FieldDefinition field;
        field.myField = valueAndField.at(1);
        std::string value = valueAndField.at(0);
        manager->ReplaceSingleValue(value, field, securityManager);
        return value;
    }

    // The first condition of the first field, filled for values between ";" ("-": none).
    std::string Filled(const std::string& values, SecurityManagerInterface* securityManager) const
    {
        const ConditionDefinition& condition = manager->fieldDefinitions.front()->conditions.front();
        return manager->HandleSingleCondition(condition, values == "-" ? Lines() : Split(values, ";"), securityManager);
    }

    std::string Settings() const
    {
        const WatchedManager& m = *manager;
        return Joined({m.filterDelimiter, m.hideAllFilter, m.defaultFilter, m.singleEqualOperator,
                       m.multipleEqualOperator, m.valueMultiplicityDelimiter, m.valueMultiplicityPrefix,
                       m.valueMultiplicitySuffix});
    }

    std::string Resources(unsigned value) const
    {
        Lines found = {"kept"};
        const bool told = manager->GetResourcesFromList(ScriptedPermissionList(), "p", value, found);
        // No name is this one, though some are up to its NUL.
        manager->GetResourcesFromList(ScriptedPermissionList(), std::string("p\0a", 3), value, found);
        return Truth(told) + Joined(found);
    }

    // A registered values function, NAME|CONFIGURATION|VALUE: what it answers, and what it maps the value to.
    std::string Mapped(const std::string& text) const
    {
        const Lines parts = Split(text, "|");
        const std::unique_ptr<AccessControl_ValuesFunctionInterface> function(
            manager->valuesFunctionFactories.at(parts.at(0))());
        std::string mapped = "left over";
        const bool isReady = function->Initialize(parts.at(1));
        const bool isMapped = function->MapValue(parts.at(2), mapped);
        return Truth(isReady) + Truth(isMapped) + Joined({mapped});
    }

    // What the callback answers in place of whatever stood there before.
    std::string CallbackAnswers() const
    {
        AccessControlCallback& c = manager->callback;
        c.userName = "u", c.group = "g", c.secondGroup = "s", c.ipAddress = "i";
        bool flag = true;
        std::string texts[6] = {"?", "?", "?", "?", "?", "?"};
        const bool all = c.GetApplicationName(texts[0]) && c.GetUserName(texts[1]) &&
                         c.GetAuxiliaryText(texts[2], flag) && c.GetGroup(texts[3]) && c.GetSecondGroup(texts[4]) &&
                         c.GetIpAddress(texts[5]);
        return Truth(all) + Truth(flag) + Joined(Lines(std::begin(texts), std::end(texts)));
    }

    std::string SplitWith(const std::string& text) const
    {
        Lines parts = {"kept"};
        manager->SplitCommaList(text, parts);
        return Joined(parts);
    }

    // By a manager of its own, of the same repository.
    std::string ExplainedText(const std::string& user, bool withoutLogin) const
    {
        Tracer explaining(manager->repositoryName, tried);
        explaining.Connect("text", 7);
        return ExplanationText(explaining.Explain({user, "ip", withoutLogin}), {});
    }

    // One manager for all that is asked until the next "watch", with what is tried by then.
    std::string Watch()
    {
        watching = std::make_unique<Tracer>(manager->repositoryName, tried);
        return Truth(watching->Connect("text", 7));
    }

    std::string Asked(const std::string& user, bool withoutLogin) const
    {
        const Answer given = watching->Explain({user, "ip", withoutLogin}).answer;
        return NameOf(given.outcome) + Joined({given.filter});
    }

    using Text = const std::string&;
    SecurityManagerInterface* const security = ScriptedSecurityManager();
    SecurityManagerInterface* const nobody = nullptr;
    std::unique_ptr<WatchedManager> manager;
    std::unique_ptr<Tracer> watching;
    WhatIf tried;
    const std::map<std::string, std::function<std::string(Text)>> commands = {
        {"create", [this](Text name) { return (manager = std::make_unique<WatchedManager>(name)), Definitions(); }},
        {"destroy", [this](Text) { return manager.reset(), ""; }},
        {"settings", [this](Text) { return Settings() + manager->GetValueMultiplicityDelimiter(); }},
        {"reread", [this](Text) { return manager->ReadConfigurations(), Definitions(); }},
        {"clear", [this](Text) { return manager->ClearFieldDefinitions(), Definitions(); }},
        {"split", [this](Text text) { return SplitWith(text); }},
        {"factories", [this](Text) { return std::to_string(manager->valuesFunctionFactories.size()); }},
        {"register", [this](Text name) { return manager->RegisterValuesFunction(name, OddFunction::Make), ""; }},
        {"registered",
         [this](Text name) { return Truth(manager->valuesFunctionFactories.at(name) != OddFunction::Make); }},
        {"connect", [this](Text) { return Truth(manager->InitSecurityConnection("text", 7)); }},
        {"has-manager", [this](Text) { return Truth(manager->securityManager != nullptr); }},
        {"has-admin", [this](Text) { return Truth(manager->adminInterface != nullptr); }},
        {"login", [this](Text user) { return manager->GetAccessControlFilter(user, "ip"); }},
        {"byname", [this](Text user) { return manager->GetAccessControlFilter(user); }},
        {"explain", [this](Text user) { return ExplainedText(user, false); }},
        {"explain-byname", [this](Text user) { return ExplainedText(user, true); }},
        {"watch", [this](Text) { return Watch(); }},
        {"ask", [this](Text user) { return Asked(user, false); }},
        {"ask-byname", [this](Text user) { return Asked(user, true); }},
        {"given", [this](Text) { return manager->GetAccessControlFilter(security); }},
        {"given-nobody", [this](Text) { return manager->GetAccessControlFilter(nobody); }},
        {"user-in-callback", [this](Text) { return manager->callback.userName; }},
        {"callback", [this](Text) { return CallbackAnswers(); }},
        {"map", [this](Text text) { return Mapped(text); }},
        {"own", [this](Text text) { return OwnValue(text, security); }},
        {"own-of-nobody", [this](Text text) { return OwnValue(text, nobody); }},
        {"fill", [this](Text values) { return Filled(values, security); }},
        {"fill-for-nobody", [this](Text values) { return Filled(values, nobody); }},
        {"check",
         [this](Text sought) {
             return Truth(manager->CheckPermissionInList(ScriptedPermissionList(), PermissionFrom(sought)));
         }},
        {"resources", [this](Text value) { return Resources(static_cast<unsigned>(std::stoul(value))); }},
    };
};

std::vector<Lines> Scenarios()
{
    std::vector<Lines> scenarios;
    for (const std::string& line : CaseLines("scenarios.txt")) {
        if (line.starts_with("scenario ")) {
            scenarios.push_back({line.substr(9)});
        } else {
            scenarios.back().push_back(line);
        }
    }
    return scenarios;
}

// Whichever call to the outside throws, the exception arrives, and afterwards all is answered as if nothing had been.
void ExpectFaultsToArrive(Player& player, const std::string& request)
{
    const std::string answer = player.answer;
    const int calls = script.calls;
    for (int call = 1; call <= calls; ++call) {
        script.calls = 0;
        script.callToFail = call;
        EXPECT_THROW(player.Do(request), std::runtime_error) << request << ", call " << call;
        script.callToFail = 0;
        player.Do(request);
        EXPECT_EQ(player.answer, answer) << request << " after call " << call;
    }
}

// The same for memory, at every allocation on the way.
void ExpectNoWrongAnswerWithoutMemory(Player& player, const std::string& request)
{
    const std::string answer = player.answer;
    for (long allocation = 1;; ++allocation) {
        bool isAnswered = false;
        FailAllocation(allocation);
        try {
            player.Do(request);
            isAnswered = true;
        } catch (const std::bad_alloc&) {
        }
        const bool isTooFew = AllocationHasFailed();
        FailAllocation(0);
        ASSERT_TRUE(isAnswered || isTooFew);
        if (isAnswered) {
            EXPECT_EQ(player.answer, answer) << request << " with allocation " << allocation << " refused";
        }
        if (!isTooFew) {
            return;
        }
        player.Do(request);
        EXPECT_EQ(player.answer, answer) << request << " after allocation " << allocation;
    }
}

bool IsOneOf(const std::string& line, std::initializer_list<const char*> commands)
{
    return std::any_of(commands.begin(), commands.end(),
                       [&](const char* command) { return line.starts_with(command); });
}

class ScenarioTest : public testing::TestWithParam<Lines> {};

TEST_P(ScenarioTest, Plays)
{
    script = Script();
    Player player;
    const Lines& lines = GetParam();
    for (std::size_t at = 1; at < lines.size();) {
        const std::string& line = lines[at++];
        script.journal.clear();
        script.calls = 0;
        player.Do(line);
        Lines expected, messages;
        bool isComplete = false;
        for (; at < lines.size() && (lines[at].front() == '>' || lines[at].front() == '!'); ++at) {
            isComplete = lines[at].front() == '>';
            if (lines[at].size() > 2) {
                expected.push_back(lines[at].substr(2));
            }
        }
        std::copy_if(
            script.journal.begin(), script.journal.end(), std::back_inserter(messages),
            [](const std::string& entry) { return std::isdigit(static_cast<unsigned char>(entry.front())) != 0; });
        if (isComplete || !expected.empty()) {
            EXPECT_EQ(isComplete ? script.journal : messages, expected) << line;
        }
        if (at < lines.size() && lines[at].starts_with("=")) {
            EXPECT_EQ(player.answer, Unescaped(lines[at].substr(std::min<std::size_t>(2, lines[at].size())))) << line;
            ++at;
        }
        if (IsOneOf(line, {"create", "connect", "login", "byname", "given", "ask"})) {
            ExpectFaultsToArrive(player, line);
            ExpectNoWrongAnswerWithoutMemory(player, line);
        }
        if (IsOneOf(line, {"login ", "byname "}) && player.IsConnected()) {
            EXPECT_EQ(player.Watched(line), player.answer) << line;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Text, ScenarioTest, testing::ValuesIn(Scenarios()), CaseName);

class ConditionTest : public testing::TestWithParam<Lines> {};

TEST_P(ConditionTest, IsFilled)
{
    script = Script();
    Player player;
    for (const std::string& line : CaseLines("conditions_setting.txt")) {
        player.Do(line);
    }
    const Lines& row = GetParam();
    const std::string field = "config @fields\\f\\docs\\";
    for (const std::string& line : {field + "condition1=" + row.at(1), field + "replace_fields1=" + row.at(2),
                                    field + "mandatory_fields1=" + row.at(3), field + "values_function1=" + row.at(4),
                                    std::string("create docs"), "fill " + row.at(5)}) {
        player.Do(line);
    }
    EXPECT_EQ(player.answer, row.at(6));
}

INSTANTIATE_TEST_SUITE_P(Table, ConditionTest, testing::ValuesIn(CaseRows("conditions.txt")), CaseName);

} // namespace
