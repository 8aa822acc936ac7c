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

// All checks, found by the permission and by the attribute that they look at.
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

    void Look(const SECM_Grant& grant)
    {
        const std::string name = grant.permission.name();
        if (askedFor.count(name) != 0) {
            ForEach(byName, name, [&](GrantCheck& check) { check.Look(grant); });
        } else {
            ForEach(byFoldedName, Folded(name), [&](GrantCheck& check) { check.LookAtMisspelt(grant); });
        }
    }

    void Look(const SECM_Attribute& attribute)
    {
        ForEach(byAttribute, attribute.name, [&](AttributeCheck& check) { check.Look(attribute); });
    }

    void Tell(std::vector<Finding>& findings) const
    {
        for (const auto& [repository, check] : grants) {
            FindingSink sink(findings, repository);
            check.Tell(sink);
        }
        for (const auto& [repository, check] : attributes) {
            FindingSink sink(findings, repository);
            check.Tell(sink);
        }
    }

private:
    template <class Check>
    using Index = std::unordered_map<std::string, std::vector<Check*>>;

    template <class Check, class Operation>
    static void ForEach(const Index<Check>& index, const std::string& name, const Operation& look)
    {
        if (const auto found = index.find(name); found != index.end()) {
            for (Check* check : found->second) {
                look(*check);
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
        if (IsFramed(field.myField)) { // AC030 tells about one that is not framed
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

void CheckGranted(const std::vector<CheckedRepository>& repositories, const std::unordered_set<std::string>& askedFor,
                  SECM_ListingInterface& security, std::vector<Finding>& findings)
{
    SecurityChecks checks(repositories, askedFor);
    security.ForEachGrant([&](const SECM_Grant& grant) { checks.Look(grant); });
    security.ForEachAttribute([&](const SECM_Attribute& attribute) { checks.Look(attribute); });
    checks.Tell(findings);
}

} // namespace secm::analysis
