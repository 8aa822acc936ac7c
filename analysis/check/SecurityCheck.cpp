// What is granted goes by once, row by row. Watches gather what concerns them; at the end each tells what it saw.
#include "analysis/check/SecurityCheck.h"

#include "analysis/check/SubstitutionCheck.h"

#include <algorithm>
#include <cctype>
#include <list>
#include <map>
#include <set>
#include <unordered_map>

namespace secm::analysis {

namespace {

// The place of findings about the connection.
constexpr const char* securityOption = "--security";

std::string PositionOf(const SECM_Grant& grant)
{
    return "that at position " + std::to_string(grant.position);
}

// An attribute that something asks for.
struct AttributeWatch {
    void Tell(Report& report) const
    {
        if (!isHeld) {
            report.Warn("AC042", place, asker + " asks for the attribute '" + name + "', which no user has",
                        isValue ? "users granted %my% get no value from it, and the hide-all filter when they have no "
                                  "other"
                                : "users granted %my% get the empty text in its place or, where it is mandatory, the "
                                  "field without this condition",
                        "write the attribute's name as in the security database, or give it to the users");
        }
    }

    std::string name;
    std::string asker;
    CFG_Place place;
    bool isValue;
    bool isHeld = false;
    std::list<Inlet> inlets;
};

// A definition and the grants of its permission.
class GrantWatch {
public:
    GrantWatch(const CheckedRepository& ofRepository, const CheckedDefinition& watched)
        : repository(ofRepository), definition(watched), field(*watched.rule)
    {
        const auto leavesValues = [](const CheckedCondition& condition) {
            return condition.fillsTokens && condition.tokens.empty() && condition.Has(valuesPlaceholder);
        };
        const auto leavesTokens = [](const CheckedCondition& condition) {
            return condition.fillsTokens && condition.HasToken() && !condition.Has(valuesPlaceholder);
        };
        leavingValues = First(leavesValues);
        leavingTokens = First(leavesTokens);
        for (const CheckedCondition& condition : definition.conditions) {
            inlets.emplace_back(CheckedScope{repository, definition, condition}, "", "");
            AddTokens(condition);
        }
        AddMyField();
    }

    void Look(const SECM_Grant& grant)
    {
        isNamed = true;
        if ((grant.permission.value() & field.permissionValue) != field.permissionValue) {
            return;
        }
        isGranted = true;
        const std::string resource = grant.permission.resource() != nullptr ? grant.permission.resource() : "";
        if (resource.empty()) {
            return; // held outright, or dropped
        }
        (resource == ownValue ? own : others).Add(PositionOf(grant));
        if (resource == ownValue && !field.myField.empty()) {
            return; // the attribute's value stands in for it
        }
        for (Inlet& inlet : inlets) {
            inlet.Look(resource, PositionOf(grant));
        }
    }

    void LookAtOther(const SECM_Grant& grant) { misspelt[grant.permission.name()].Add(PositionOf(grant)); }

    void Tell(Report& report) const;

    const std::string& PermissionName() const { return field.permissionName; }
    std::list<AttributeWatch>& Attributes() { return attributes; }

private:
    template <class Predicate>
    const CheckedCondition* First(Predicate predicate) const
    {
        const auto found = std::find_if(definition.conditions.begin(), definition.conditions.end(), predicate);
        return found != definition.conditions.end() ? &*found : nullptr;
    }

    void AddTokens(const CheckedCondition& condition)
    {
        for (const std::string& token : condition.fillsTokens ? condition.tokens : std::vector<std::string>()) {
            AttributeWatch& watch = attributes.emplace_back();
            watch = {AttributeName(token),
                     "the token '" + token + "'",
                     definition.table.PlaceOf(condition.Key("replace_fields")),
                     false,
                     false,
                     {}};
            watch.inlets.emplace_back(CheckedScope{repository, definition, condition}, token, watch.name);
        }
    }

    void AddMyField()
    {
        if (!IsFramed(field.myField)) {
            return; // none, or one that is told about already
        }
        AttributeWatch& watch = attributes.emplace_back();
        watch = {AttributeName(field.myField), "my_field", definition.table.PlaceOf("my_field"), true, false, {}};
        for (const CheckedCondition& condition : definition.conditions) {
            watch.inlets.emplace_back(CheckedScope{repository, definition, condition}, "", watch.name);
        }
    }

    const CheckedRepository& repository;
    const CheckedDefinition& definition;
    const FieldRule& field;
    std::list<Inlet> inlets;
    std::list<AttributeWatch> attributes;
    const CheckedCondition* leavingValues = nullptr; // in which %values% stays for "%my%"
    const CheckedCondition* leavingTokens = nullptr; // in which tokens stay for anything else
    bool isNamed = false;
    bool isGranted = false;
    Tally own;
    Tally others;
    std::map<std::string, Tally> misspelt;
};

void GrantWatch::Tell(Report& report) const
{
    const CFG_Place& place = definition.table.PlaceOf("permission_name");
    if (!isGranted) {
        report.Warn(
            "AC040", place,
            "nobody is granted '" + field.permissionName + "'" +
                (isNamed ? " with all the bits of permission_value " + std::to_string(field.permissionValue) : ""),
            "every user who is known gets the hide-all filter",
            isNamed ? "grant these bits, or ask for others in permission_value"
                    : "grant it, or write the permission's name as in the security database");
    }
    for (const auto& [name, tally] : misspelt) {
        report.Warn("AC041", place,
                    "'" + name + "', which no field asks for, stands in place of '" + field.permissionName + "' in " +
                        tally.Count("grant"),
                    "they count for nothing: users who have no other get the hide-all filter",
                    "write the name alike in both places, upper and lower case and blanks too");
    }
    if (own.count != 0 && leavingValues != nullptr) {
        report.Error("AC045", definition.table.PlaceOf("my_field"),
                     "%my%, for which the field '" + definition.rule->name + "' has neither my_field nor tokens in " +
                         leavingValues->Key("condition") + ", is in " + own.Count("grant"),
                     "users with such a grant alone get a filter in which %values% stands as it is written; among "
                     "other values, %my% is a value as it is written",
                     "name the users' attribute in my_field");
    }
    if (others.count != 0 && leavingTokens != nullptr) {
        report.Error("AC046", definition.table.PlaceOf(leavingTokens->Key("condition")),
                     "something else than %my%, for which " + leavingTokens->Key("condition") + " of the field '" +
                         definition.rule->name + "' has no %values%, is in " + others.Count("grant"),
                     "the tokens stay as they are written in the filters of users who have them",
                     "grant %my%, or write a condition with %values% (and my_field for %my%)");
    }
    for (const Inlet& inlet : inlets) {
        inlet.Tell(report);
    }
    for (const AttributeWatch& attribute : attributes) {
        attribute.Tell(report);
        for (const Inlet& inlet : attribute.inlets) {
            inlet.Tell(report);
        }
    }
}

// What is left of a name when case and blanks do not count.
std::string Folded(const std::string& name)
{
    std::string folded;
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isspace(byte) == 0) {
            folded += static_cast<char>(std::tolower(byte));
        }
    }
    return folded;
}

// The permissions that any definition asks for, those that are not checked too.
std::set<std::string> PermissionsAskedFor()
{
    std::set<std::string> names;
    for (const std::string& field : TableNames(FieldsPath())) {
        const std::string path = FieldsPath() + "\\" + field;
        for (const std::string& repository : TableNames(path)) {
            names.insert(CheckedTable(path + "\\" + repository, {}).Text("permission_name"));
        }
    }
    return names;
}

} // namespace

void CheckSecurity(const std::vector<CheckedRepository>& repositories, SECM_ListingInterface& security,
                   std::vector<Finding>& findings)
{
    const std::set<std::string> askedFor = PermissionsAskedFor();
    std::list<std::pair<const CheckedRepository*, GrantWatch>> watches;
    std::unordered_map<std::string, std::vector<GrantWatch*>> byName;
    std::unordered_map<std::string, std::vector<GrantWatch*>> byFoldedName;
    std::unordered_map<std::string, std::vector<AttributeWatch*>> byAttribute;
    for (const CheckedRepository& repository : repositories) {
        for (const CheckedDefinition& definition : repository.definitions) {
            if (!definition.IsInForce()) {
                continue;
            }
            GrantWatch& watch = watches.emplace_back(&repository, GrantWatch(repository, definition)).second;
            byName[watch.PermissionName()].push_back(&watch);
            byFoldedName[Folded(watch.PermissionName())].push_back(&watch);
            for (AttributeWatch& attribute : watch.Attributes()) {
                byAttribute[attribute.name].push_back(&attribute);
            }
        }
    }

    security.ForEachRisk([&](const SECM_Risk& risk) {
        Report(findings, "").Warn("AC051", {securityOption, 1, 1}, risk.problem, risk.effect, risk.remedy);
    });
    security.ForEachGrant([&](const SECM_Grant& grant) {
        const std::string name = grant.permission.name();
        const bool isAskedFor = askedFor.count(name) != 0;
        const auto& watching = isAskedFor ? byName : byFoldedName;
        const auto found = watching.find(isAskedFor ? name : Folded(name));
        if (found == watching.end()) {
            return;
        }
        for (GrantWatch* watch : found->second) {
            isAskedFor ? watch->Look(grant) : watch->LookAtOther(grant);
        }
    });
    security.ForEachAttribute([&](const SECM_Attribute& attribute) {
        if (const auto found = byAttribute.find(attribute.name); found != byAttribute.end()) {
            for (AttributeWatch* watch : found->second) {
                watch->isHeld = true;
                for (Inlet& inlet : watch->inlets) {
                    inlet.Look(attribute.value, "that of the user '" + attribute.userName + "'");
                }
            }
        }
    });

    for (const auto& [repository, watch] : watches) {
        Report report(findings, repository->name);
        watch.Tell(report);
    }
}

} // namespace secm::analysis
