// The rules, by subject. Each subject has a file of its name, which has one function for each rule.
#pragma once

#include "analysis/check/CheckedConfiguration.h"
#include "analysis/check/FindingSink.h"

#include <set>
#include <string>
#include <unordered_set>
#include <vector>

class SECM_ListingInterface;

namespace secm::analysis {

// Check one repository at a time.
void CheckSettings(const CheckedRepository& repository, FindingSink& sink);
void CheckWholeFilters(const CheckedRepository& repository, FindingSink& sink);
void CheckOperators(const CheckedRepository& repository, FindingSink& sink);
void CheckLists(const CheckedRepository& repository, FindingSink& sink);
void CheckJoins(const CheckedRepository& repository, FindingSink& sink);
void CheckDefinition(const CheckedDefinition& definition, FindingSink& sink);
void CheckConditionNumbers(const CheckedDefinition& definition, FindingSink& sink);
void CheckPlaceholders(const CheckedScope& scope, FindingSink& sink);
void CheckTemplateSyntax(const CheckedScope& scope, FindingSink& sink);
void CheckTokens(const CheckedScope& scope, FindingSink& sink);
void CheckValuesFunction(const CheckedScope& scope, FindingSink& sink);
void CheckUnreadNames(const CheckedRepository& repository, FindingSink& sink);

// Check what repositories share, which is read once for all of them.
void CheckCodeTables(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings);
void CheckSiteIssuers(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings);
void CheckUnquotedNames(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings);
void CheckDifferences(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings);
/// Gives the names of the repositories whose settings are misplaced; "*" for one without a name.
std::set<std::string> CheckMisplacedTables(FindingSink& sink);
void CheckSharedUnreadNames(const std::set<std::string>& misplacedRepositories, FindingSink& sink);

// Check what a security manager grants. They throw what `security` throws.
void CheckConnectionRisks(SECM_ListingInterface& security, std::vector<Finding>& findings);
/// `askedFor`: the permissions that any definition asks for, also one of a repository that is not checked.
void CheckSecurity(const std::vector<CheckedRepository>& repositories, const std::unordered_set<std::string>& askedFor,
                   SECM_ListingInterface& security, std::vector<Finding>& findings);

} // namespace secm::analysis
