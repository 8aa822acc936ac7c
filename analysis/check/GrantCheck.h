#pragma once

#include "analysis/check/CheckedConfiguration.h"
#include "analysis/check/FindingSink.h"
#include "analysis/check/FirstAndCount.h"
#include "analysis/check/SubstitutionCheck.h"
#include "platform/security_manager/SECM_Listing.h"

#include <map>
#include <string>
#include <vector>

namespace secm::analysis {

/// A definition in force and the grants of its permission. `repository` and `definition` must outlive it.
class GrantCheck {
public:
    /// Does not keep `names`.
    GrantCheck(const CheckedRepository& repository, const CheckedDefinition& definition, ConfiguredNames& names);

    /// `grant` is one of the definition's permission, whatever its bits.
    void Check(const SECM_Grant& grant);
    /// `grant` is one of a permission that no definition asks for, of nearly the same name.
    void CheckMisspelt(const SECM_Grant& grant);
    /// `shared` is for what concerns the database alone: other definitions of the same permission find the same.
    void Report(FindingSink& sink, FindingSink& shared) const;

private:
    void CheckMeaning(const std::string& resource, const SECM_Grant& grant);

    void MisspeltPermissions(FindingSink& sink) const;
    void OwnValueStays(FindingSink& sink) const;
    void TokensStay(FindingSink& sink) const;
    void Everything(FindingSink& shared) const;
    void MisspeltOwnValues(FindingSink& shared) const;

    const CheckedDefinition& definition;
    const FieldRule& field;
    std::vector<SubstitutionCheck> substitutions;
    const CheckedCondition* leavingValues; // the first that keeps %values% when "%my%" is granted; null: none does
    const CheckedCondition* leavingTokens; // the first that keeps its tokens when anything else is granted; likewise
    FirstAndCount own;                     // grants of "%my%"
    FirstAndCount others;
    FirstAndCount everything; // resources that seem to stand for everything
    FirstAndCount empty;
    FirstAndCount misspeltOwn;                     // resources that are nearly "%my%"
    std::map<std::string, FirstAndCount> misspelt; // by permission
};

} // namespace secm::analysis
