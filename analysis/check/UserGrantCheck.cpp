#include "analysis/check/UserGrantCheck.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/GrantRow.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>

namespace secm::analysis {

namespace {

constexpr unsigned granteeShift = 32;
constexpr std::uint64_t groupBit = std::uint64_t{1} << 31U;

std::string RowInWords(const char* what, long long position)
{
    return fmt::format("{} at position {}", what, position);
}

} // namespace

UserGrantCheck::UserGrantCheck(const std::vector<CheckedRepository>& repositories, const AskedPermissions& permissions,
                               const UserDirectory& directory, ConfiguredNames& names)
    : asked(permissions), known(directory)
{
    for (const CheckedRepository& repository : repositories) {
        for (const CheckedDefinition& definition : repository.definitions) {
            if (definition.IsInForce()) {
                AddField(repository, definition, names);
            }
        }
    }
}

void UserGrantCheck::AddField(const CheckedRepository& repository, const CheckedDefinition& definition,
                              ConfiguredNames& names)
{
    const FieldRule& rule = *definition.rule;
    const std::size_t permission = asked.Find(rule.permissionName).value();
    Field field{repository, definition, permission, asked.Only(permission, rule.permissionValue)};
    if (IsFramed(rule.myField)) {
        field.attribute = AttributeName(rule.myField);
        attributes[field.attribute].holders.resize(known.Users().size());
    }
    for (const CheckedCondition& condition : definition.conditions) {
        for (const std::string& token : condition.fillsTokens ? condition.tokens : std::vector<std::string>()) {
            const std::string attribute = AttributeName(token);
            attributes[attribute].holders.resize(known.Users().size());
            const auto& mandatory = condition.rule->mandatoryTokens;
            const CheckedScope scope{repository, definition, condition};
            field.tokens.push_back({attribute,
                                    std::binary_search(mandatory.begin(), mandatory.end(), token),
                                    scope.PlaceOf("replace_fields"),
                                    {scope, token, attribute, names},
                                    {}});
        }
    }
    fields.push_back(std::move(field));
}

std::optional<UserGrantCheck::Grantee> UserGrantCheck::GranteeOf(const SECM_Grant& grant) const
{
    if (const auto number = grant.isToGroup ? known.FindGroup(grant.grantee) : known.FindUser(grant.grantee)) {
        return *number | (grant.isToGroup ? groupBit : 0);
    }
    return std::nullopt;
}

void UserGrantCheck::Check(const SECM_Grant& grant, std::size_t permission)
{
    const auto grantee = GranteeOf(grant);
    if (grant.isToGroup && !known.KnowsGroups()) {
        ofUnknownGroups[permission] |= asked.HeldBy(permission, grant.permission.value());
    }
    if (!grantee) {
        return;
    }
    Held& of = held[*grantee << granteeShift | permission];
    const Row row{grant.position, grant.permission.value()};
    if (ResourceOf(grant) == nullptr) {
        of.outrightBits |= row.bits;
        if (row.bits != 0 || asked.HeldBy(permission, 0) != 0) {
            of.outright = of.outright.value_or(row);
        }
        return;
    }
    const AskedPermissions::ValueSet values = asked.HeldBy(permission, row.bits);
    if (values == 0 && row.bits != 0) { // AC087 is about one without bits
        of.other = of.other.value_or(row);
    }
    if (values == 0) {
        return;
    }
    of.resource = of.resource.value_or(row);
    of.values |= values;
    if (ResourceOf(grant) == ownValue) {
        of.ownValues |= values;
        of.own = of.own.value_or(row);
        ++of.ownCount;
    } else if (*ResourceOf(grant) != '\0') {
        ++of.otherCount;
    }
}

void UserGrantCheck::Check(const SECM_Attribute& attribute)
{
    const auto found = attributes.find(attribute.name);
    const auto user = known.FindUser(attribute.userName);
    if (found != attributes.end()) {
        found->second.exists = true;
        if (user && !attribute.value.empty()) {
            found->second.holders[*user] = true;
        }
    }
}

const UserGrantCheck::Held& UserGrantCheck::Find(std::optional<Grantee> grantee, std::size_t permission) const
{
    static const Held none;
    if (!grantee) {
        return none;
    }
    const auto found = held.find(*grantee << granteeShift | permission);
    return found != held.end() ? found->second : none;
}

bool UserGrantCheck::Has(UserDirectory::Number user, const std::string& attribute) const
{
    return attributes.find(attribute)->second.holders[user];
}

void UserGrantCheck::Consider(UserDirectory::Number user, Field& field) const
{
    const auto& group = known.Users()[user].group;
    const Held& own = Find(user, field.permission);
    const Held& ofGroup = Find(group ? std::optional(*group | groupBit) : std::nullopt, field.permission);
    const auto isHeldBy = [&](std::uint32_t bits) { return (asked.HeldBy(field.permission, bits) & field.value) != 0; };
    const bool isHeldOutright = (own.outright || ofGroup.outright) && isHeldBy(own.outrightBits | ofGroup.outrightBits);
    const bool isGranted = isHeldOutright || ((own.values | ofGroup.values) & field.value) != 0;
    field.isGranted = field.isGranted || isGranted;
    if (!isGranted) {
        AddNearMiss(user, own, ofGroup, field);
        return;
    }
    if (!isHeldOutright) {
        ConsiderOwnValue(user, own, ofGroup, field);
        return;
    }
    // A user who holds outright what the group has for some resources was probably given more on purpose.
    const bool isOfGroup = ofGroup.outright && isHeldBy(ofGroup.outrightBits);
    const auto resourceOf = [&](const Held& of) {
        return (of.values & field.value) != 0 ? of.resource : std::optional<Row>();
    };
    const auto resource = resourceOf(own) || !isOfGroup ? resourceOf(own) : resourceOf(ofGroup);
    if (resource) {
        field.useless.Add(
            fmt::format("'{}': {}, {}", *known.Users()[user].name,
                        RowInWords("outright", (own.outright ? own.outright : ofGroup.outright)->position),
                        RowInWords("for a resource", resource->position)));
    }
}

// A user with the bits of another field was probably not meant to have those of this one.
void UserGrantCheck::AddNearMiss(UserDirectory::Number user, const Held& own, const Held& ofGroup, Field& field) const
{
    const bool hasOthersBits = asked.HeldBy(field.permission, own.outrightBits | ofGroup.outrightBits) != 0;
    const std::optional<Row> none;
    for (const auto& row :
         {own.other, hasOthersBits ? none : own.outright, ofGroup.other, hasOthersBits ? none : ofGroup.outright}) {
        if (!row) {
            continue;
        }
        field.nearMisses.Add(fmt::format("'{}', by the row at position {} with {}", *known.Users()[user].name,
                                         row->position, row->bits));
        if (field.nearMisses.count == 1) {
            field.nearMissRemedy =
                fmt::format("set permission_value to {} in security_permission where position = {}, if the user is to "
                            "have it; else delete the row",
                            row->bits | field.definition.rule->permissionValue, row->position);
        }
        return;
    }
}

void UserGrantCheck::ConsiderOwnValue(UserDirectory::Number user, const Held& own, const Held& ofGroup,
                                      Field& field) const
{
    if (((own.ownValues | ofGroup.ownValues) & field.value) == 0) {
        return;
    }
    const std::string name = fmt::format("'{}'", *known.Users()[user].name);
    const bool hasOthers = own.otherCount + ofGroup.otherCount != 0;
    if (!field.attribute.empty()) {
        if (!Has(user, field.attribute)) {
            (hasOthers ? field.lacking : field.lackingHides).Add(name);
        }
        return;
    }
    if (!field.tokens.empty() && own.ownCount + ofGroup.ownCount > 1) {
        field.ownTwice.Add(own.own && ofGroup.own ? fmt::format("{}: at position {}, and to the group at position {}",
                                                                name, own.own->position, ofGroup.own->position)
                                                  : fmt::format("{}: at position {} and later", name,
                                                                (own.own ? own.own : ofGroup.own)->position));
        return;
    }
    for (Token& token : field.tokens) {
        if (!hasOthers && !token.isMandatory && !Has(user, token.attribute)) {
            token.substitution.CheckLacking(name);
            token.lacking.Add(name);
        }
    }
}

void UserGrantCheck::Report(std::vector<Finding>& findings)
{
    std::set<std::pair<std::size_t, AskedPermissions::ValueSet>> reported;
    for (Field& field : fields) {
        for (UserDirectory::Number user = 0; user < known.Users().size(); ++user) {
            Consider(user, field);
        }
        field.isGranted = field.isGranted || (ofUnknownGroups[field.permission] & field.value) != 0;
        FindingSink sink(findings, field.repository.Rules().repository);
        ReportField(field, sink);
        if (reported.insert({field.permission, field.value}).second) { // several fields may ask for the same
            FindingSink shared(findings, "");
            ReportPermission(field, shared);
        }
    }
}

void UserGrantCheck::ReportPermission(const Field& field, FindingSink& sink)
{
    const FieldRule& rule = *field.definition.rule;
    const CFG_Place& place = field.definition.table.PlaceOf("permission_name");
    if (field.isGranted && field.nearMisses.count != 0) { // AC040 is about a permission that nobody is granted
        sink.Warn("AC081", place,
                  fmt::format("'{}' is granted, but not with all bits of permission_value {}, to {}",
                              rule.permissionName, rule.permissionValue, field.nearMisses.InWords("user")),
                  "the grants do not count for the field: these users get the hide-all filter", field.nearMissRemedy);
    }
    if (field.useless.count != 0) {
        sink.Warn(
            "AC085", place,
            fmt::format("'{}' is granted outright and also for single resources to {}", rule.permissionName,
                        field.useless.InWords("user")),
            "the grant without a resource decides: the field does not restrict these users, and the resources have "
            "no effect",
            "write the resource into the row where it is NULL; or, if the users are to see everything, delete the "
            "rows with a resource");
    }
}

void UserGrantCheck::ReportField(const Field& field, FindingSink& sink) const
{
    const CheckedTable& table = field.definition.table;
    const FieldRule& rule = *field.definition.rule;
    if (!field.isGranted) {
        const bool isNamed = field.nearMisses.count != 0;
        sink.Warn("AC040", table.PlaceOf("permission_name"),
                  fmt::format("no user is granted '{}'{}", rule.permissionName,
                              isNamed
                                  ? fmt::format(" with all bits of permission_value {}; it is granted with others to "
                                                "{}",
                                                rule.permissionValue, field.nearMisses.InWords("user"))
                                  : ""),
                  "every user who is known gets the hide-all filter",
                  isNamed ? "grant these bits in security_permission, or ask for others in permission_value"
                          : "grant it, or write the permission's name as in security_permission.permission_name");
    }
    const auto lack = [&](const CFG_Place& place, const std::string& attribute, const FirstAndCount& users,
                          const char* effect) {
        if (users.count != 0 && attributes.find(attribute)->second.exists) { // AC042 is about one that nobody has
            sink.Warn("AC088", place,
                      fmt::format("%my% is granted, and the attribute '{}' is missing or empty, for {}", attribute,
                                  users.InWords("user")),
                      effect,
                      fmt::format("add the attribute '{}' with a value to security_attribute for these users, or grant "
                                  "them other values",
                                  attribute));
        }
    };
    const CFG_Place& myField = table.PlaceOf("my_field");
    lack(myField, field.attribute, field.lackingHides, "they have no other value: they get the hide-all filter");
    lack(myField, field.attribute, field.lacking, "they have only the other values that they are granted");
    for (const Token& token : field.tokens) {
        if (token.substitution.AllowsEmptyText()) {
            lack(token.place, token.attribute, token.lacking,
                 "they see records in which the field is empty, and not those that were meant");
        }
        token.substitution.Report(sink);
    }
    if (field.ownTwice.count != 0) {
        sink.Error(
            "AC046", table.PlaceOf("permission_name"),
            fmt::format("%my% of '{}' is granted more than once, and a condition of the field '{}' has tokens, for {}",
                        rule.permissionName, rule.name, field.ownTwice.InWords("user")),
            "the tokens stay as they are written in the filters of these users, because tokens are only filled "
            "in when %my% is the only value",
            "delete one of the rows, of the user or of the user's group");
    }
}

} // namespace secm::analysis
