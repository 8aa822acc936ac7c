#pragma once

#include "analysis/check/FindingSink.h"
#include "analysis/check/SubstitutionCheck.h"
#include "platform/security_manager/SECM_Listing.h"

#include <string>
#include <vector>

namespace secm::analysis {

/// An attribute that a token or my_field asks for: whether any user has it, and what its values do to the templates.
class AttributeCheck {
public:
    /// The attribute that my_field names: its value replaces %values% in all conditions.
    static AttributeCheck OfMyField(const CheckedRepository& repository, const CheckedDefinition& definition,
                                    ConfiguredNames& names);
    static AttributeCheck OfToken(const CheckedScope& scope, const std::string& token, ConfiguredNames& names);

    const std::string& Name() const { return name; }

    /// `attribute` is one of that name.
    void Check(const SECM_Attribute& attribute);
    void Report(FindingSink& sink) const;

private:
    AttributeCheck(std::string ofName, std::string askedForBy, const CFG_Place& askedForAt, bool givesValue);

    std::string name;
    std::string asker;
    CFG_Place place;
    bool isValue; // false: it fills a token
    bool isHeld = false;
    std::vector<SubstitutionCheck> substitutions;
};

} // namespace secm::analysis
