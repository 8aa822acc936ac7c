// Passes every user, grant and attribute of the security manager once to the checks that they concern.
#include "analysis/check/CheckRules.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/AskedPermissions.h"
#include "analysis/check/AttributeCheck.h"
#include "analysis/check/AttributeNameCheck.h"
#include "analysis/check/ConfiguredNames.h"
#include "analysis/check/GrantCheck.h"
#include "analysis/check/GrantRowCheck.h"
#include "analysis/check/GranteeCheck.h"
#include "analysis/check/MisspeltName.h"
#include "analysis/check/NameCheck.h"
#include "analysis/check/RepeatedGrantCheck.h"
#include "analysis/check/UserDirectory.h"
#include "analysis/check/UserGrantCheck.h"
#include "platform/security_manager/SECM_Listing.h"

#include <deque>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace secm::analysis {

namespace {

// The checks that belong to a field, indexed by the permission and by the attribute that they are about.
class FieldChecks {
public:
    FieldChecks(const std::vector<CheckedRepository>& repositories, ConfiguredNames& configuredNames)
        : names(configuredNames)
    {
        for (const CheckedRepository& repository : repositories) {
            for (const CheckedDefinition& definition : repository.definitions) {
                if (definition.IsInForce()) {
                    Add(repository, definition);
                }
            }
        }
    }

    void Check(const SECM_Grant& grant)
    {
        ForEach(byName, grant.permission.name(), [&](GrantCheck& check) { check.Check(grant); });
    }

    // `grant` is of a permission that no definition asks for.
    void CheckMisspelt(const SECM_Grant& grant)
    {
        const std::string name = grant.permission.name();
        const auto [found, isNew] = misspelt.try_emplace(name);
        if (isNew) {
            for (const auto& [asked, checks] : byName) {
                if (IsMisspeltName(name, asked)) {
                    found->second.insert(found->second.end(), checks.begin(), checks.end());
                }
            }
        }
        for (GrantCheck* check : found->second) {
            check->CheckMisspelt(grant);
        }
    }

    void Check(const SECM_Attribute& attribute)
    {
        ForEach(byAttribute, attribute.name, [&](AttributeCheck& check) { check.Check(attribute); });
        attributeNames.Check(attribute);
    }

    void Report(std::vector<Finding>& findings)
    {
        FindingSink shared(findings, "");
        for (const auto& [repository, check] : grants) {
            FindingSink sink(findings, repository);
            check.Report(sink, shared);
        }
        for (const auto& [repository, check] : attributes) {
            FindingSink sink(findings, repository);
            check.Report(sink);
        }
        attributeNames.Report(shared);
    }

private:
    template <class OneCheck>
    using Index = std::unordered_map<std::string, std::vector<OneCheck*>>;

    template <class OneCheck, class Operation>
    static void ForEach(const Index<OneCheck>& index, const std::string& name, const Operation& operation)
    {
        if (const auto found = index.find(name); found != index.end()) {
            for (OneCheck* check : found->second) {
                operation(*check);
            }
        }
    }

    void Add(const CheckedRepository& repository, const CheckedDefinition& definition)
    {
        const FieldRule& field = *definition.rule;
        GrantCheck& check =
            grants.emplace_back(repository.Rules().repository, GrantCheck(repository, definition, names)).second;
        byName[field.permissionName].push_back(&check);
        for (const CheckedCondition& condition : definition.conditions) {
            if (condition.fillsTokens) {
                for (const std::string& token : condition.tokens) {
                    Add(repository, AttributeCheck::OfToken({repository, definition, condition}, token, names));
                }
            }
        }
        if (IsFramed(field.myField)) { // AC030 is about one that is not framed
            Add(repository, AttributeCheck::OfMyField(repository, definition, names));
        }
    }

    void Add(const CheckedRepository& repository, AttributeCheck attribute)
    {
        AttributeCheck& check = attributes.emplace_back(repository.Rules().repository, std::move(attribute)).second;
        byAttribute[check.Name()].push_back(&check);
        attributeNames.AddAskedFor(check.Name());
    }

    ConfiguredNames& names;
    // With the name of the repository. The indexes point into them.
    std::deque<std::pair<std::string, GrantCheck>> grants;
    std::deque<std::pair<std::string, AttributeCheck>> attributes;
    Index<GrantCheck> byName;
    Index<GrantCheck> misspelt; // by the name that no definition asks for; empty: it is near none
    Index<AttributeCheck> byAttribute;
    AttributeNameCheck attributeNames;
};

// All checks of grants and attributes.
class SecurityChecks {
public:
    SecurityChecks(const std::vector<CheckedRepository>& repositories,
                   const std::unordered_set<std::string>& askedForPermissions, const UserDirectory& directory,
                   NameCheck& ofNames)
        : askedForByAny(askedForPermissions), users(directory), permissions(repositories), fields(repositories, names),
          grantees(directory), nameCheck(ofNames), repeated(permissions),
          userGrants(repositories, permissions, directory, names)
    {
    }

    void Check(const SECM_GrantRow& row)
    {
        rows.Check(row);
        grantees.Check(row);
        if (!row.fault.empty()) {
            return;
        }
        const SECM_Grant& grant = row.grant;
        if (const auto permission = permissions.Find(grant.permission.name())) {
            fields.Check(grant);
            nameCheck.Check(grant);
            repeated.Check(grant, *permission);
            userGrants.Check(grant, *permission);
        } else if (askedForByAny.count(grant.permission.name()) == 0) {
            fields.CheckMisspelt(grant);
        }
    }

    void Check(const SECM_Attribute& attribute)
    {
        fields.Check(attribute);
        grantees.Check(attribute);
        nameCheck.Check(attribute);
        userGrants.Check(attribute);
    }

    void Report(std::vector<Finding>& findings)
    {
        fields.Report(findings);
        userGrants.Report(findings);
        FindingSink shared(findings, "");
        rows.Report(shared);
        grantees.Report(shared);
        nameCheck.Report(users, shared);
        repeated.Report(shared);
    }

private:
    const std::unordered_set<std::string>& askedForByAny; // also by repositories that are not checked
    const UserDirectory& users;
    AskedPermissions permissions;
    ConfiguredNames names;
    FieldChecks fields;
    GrantRowCheck rows;
    GranteeCheck grantees;
    NameCheck& nameCheck;
    RepeatedGrantCheck repeated;
    UserGrantCheck userGrants;
};

} // namespace

void CheckSecurity(const std::vector<CheckedRepository>& repositories, const std::unordered_set<std::string>& askedFor,
                   SECM_ListingInterface& security, std::vector<Finding>& findings)
{
    UserDirectory directory;
    NameCheck names;
    security.ForEachMember([&](const SECM_Member& member) {
        directory.Add(member);
        names.Check(member);
    });
    SecurityChecks checks(repositories, askedFor, directory, names);
    security.ForEachGrantRow([&](const SECM_GrantRow& row) { checks.Check(row); });
    security.ForEachAttribute([&](const SECM_Attribute& attribute) { checks.Check(attribute); });
    checks.Report(findings);
}

} // namespace secm::analysis
