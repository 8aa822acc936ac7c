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
    GrantCheck(const CheckedRepository& repository, const CheckedDefinition& definition);

    /// `grant` is one of the definition's permission, whatever its bits.
    void Check(const SECM_Grant& grant);
    /// `grant` is one of a permission that no definition asks for, of nearly the same name.
    void CheckMisspelt(const SECM_Grant& grant);
    void Report(FindingSink& sink) const;

private:
    void NobodyIsGranted(FindingSink& sink) const;
    void MisspeltPermissions(FindingSink& sink) const;
    void OwnValueStays(FindingSink& sink) const;
    void TokensStay(FindingSink& sink) const;

    const CheckedDefinition& definition;
    const FieldRule& field;
    std::vector<SubstitutionCheck> substitutions;
    const CheckedCondition* leavingValues; // the first that keeps %values% when "%my%" is granted; null: none does
    const CheckedCondition* leavingTokens; // the first that keeps its tokens when anything else is granted; likewise
    bool isNamed = false;                  // the permission is granted, perhaps without the bits
    bool isGranted = false;
    unsigned outrightBits = 0; // of all grants without a resource, whoever has them
    FirstAndCount own;         // grants of "%my%"
    FirstAndCount others;
    std::map<std::string, FirstAndCount> misspelt; // by permission
};

} // namespace secm::analysis
