// The rules, a file for each subject and a function for each rule, and what each subject is given.
#pragma once

#include "analysis/check/CheckedConfiguration.h"
#include "analysis/check/FindingSink.h"

#include <string>
#include <unordered_set>
#include <vector>

class SECM_ListingInterface;

namespace secm::analysis {

// On one repository at a time.
void CheckSettings(const CheckedRepository& repository, FindingSink& sink);
void CheckDefinition(const CheckedDefinition& definition, FindingSink& sink);
void CheckConditionNumbers(const CheckedDefinition& definition, FindingSink& sink);
void CheckPlaceholders(const CheckedScope& scope, FindingSink& sink);
void CheckTokens(const CheckedScope& scope, FindingSink& sink);
void CheckValuesFunction(const CheckedScope& scope, FindingSink& sink);
void CheckUnreadNames(const CheckedRepository& repository, FindingSink& sink);

// On what repositories share, which is read once for all of them.
void CheckCodeTables(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings);
void CheckSiteIssuers(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings);
void CheckSharedUnreadNames(FindingSink& sink);

// On what a security manager grants. Throw what `security` throws.
void CheckConnectionRisks(SECM_ListingInterface& security, std::vector<Finding>& findings);
/// `askedFor`: the permissions that any definition asks for, also one of a repository that is not checked.
void CheckGranted(const std::vector<CheckedRepository>& repositories, const std::unordered_set<std::string>& askedFor,
                  SECM_ListingInterface& security, std::vector<Finding>& findings);

} // namespace secm::analysis
