// Passes every grant and every attribute of the security manager once to the checks that they concern, and keeps none.
#include "analysis/check/CheckRules.h"

#include "SECM_AccessControl/TemplateLanguage.h"
#include "analysis/check/AttributeCheck.h"
#include "analysis/check/GrantCheck.h"
#include "platform/security_manager/SECM_Listing.h"

#include <cctype>
#include <deque>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace secm::analysis {

namespace {

// The name without case and blanks.
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

// All checks, indexed by the permission and by the attribute that they are about.
class SecurityChecks {
public:
    SecurityChecks(const std::vector<CheckedRepository>& repositories,
                   const std::unordered_set<std::string>& askedForPermissions)
        : askedFor(askedForPermissions)
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
        const std::string name = grant.permission.name();
        if (askedFor.count(name) != 0) {
            ForEach(byName, name, [&](GrantCheck& check) { check.Check(grant); });
        } else {
            ForEach(byFoldedName, Folded(name), [&](GrantCheck& check) { check.CheckMisspelt(grant); });
        }
    }

    void Check(const SECM_Attribute& attribute)
    {
        ForEach(byAttribute, attribute.name, [&](AttributeCheck& check) { check.Check(attribute); });
    }

    void Report(std::vector<Finding>& findings) const
    {
        for (const auto& [repository, check] : grants) {
            FindingSink sink(findings, repository);
            check.Report(sink);
        }
        for (const auto& [repository, check] : attributes) {
            FindingSink sink(findings, repository);
            check.Report(sink);
        }
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
            grants.emplace_back(repository.Rules().repository, GrantCheck(repository, definition)).second;
        byName[field.permissionName].push_back(&check);
        byFoldedName[Folded(field.permissionName)].push_back(&check);
        for (const CheckedCondition& condition : definition.conditions) {
            if (condition.fillsTokens) {
                for (const std::string& token : condition.tokens) {
                    Add(repository, AttributeCheck::OfToken({repository, definition, condition}, token));
                }
            }
        }
        if (IsFramed(field.myField)) { // AC030 is about one that is not framed
            Add(repository, AttributeCheck::OfMyField(repository, definition));
        }
    }

    void Add(const CheckedRepository& repository, AttributeCheck attribute)
    {
        AttributeCheck& check = attributes.emplace_back(repository.Rules().repository, std::move(attribute)).second;
        byAttribute[check.Name()].push_back(&check);
    }

    const std::unordered_set<std::string>& askedFor;
    // With the name of the repository. The indexes point into them.
    std::deque<std::pair<std::string, GrantCheck>> grants;
    std::deque<std::pair<std::string, AttributeCheck>> attributes;
    Index<GrantCheck> byName;
    Index<GrantCheck> byFoldedName;
    Index<AttributeCheck> byAttribute;
};

} // namespace

void CheckSecurity(const std::vector<CheckedRepository>& repositories, const std::unordered_set<std::string>& askedFor,
                   SECM_ListingInterface& security, std::vector<Finding>& findings)
{
    SecurityChecks checks(repositories, askedFor);
    security.ForEachGrant([&](const SECM_Grant& grant) { checks.Check(grant); });
    security.ForEachAttribute([&](const SECM_Attribute& attribute) { checks.Check(attribute); });
    checks.Report(findings);
}

} // namespace secm::analysis
