#pragma once

#include "analysis/check/CountByName.h"
#include "analysis/check/FindingSink.h"
#include "platform/security_manager/SECM_Listing.h"

#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace secm::analysis {

/// Attributes whose names are nearly those that my_field and tokens ask for, of users who lack the right one.
class AttributeNameCheck {
public:
    void AddAskedFor(const std::string& name) { asked.insert(name); }

    /// Attributes of one user are given together.
    void Check(const SECM_Attribute& attribute);
    void Report(FindingSink& sink);

private:
    // The name that is asked for and that `name` was probably meant to be; empty when there is none.
    const std::string& Meant(const std::string& name);
    void EndUser();

    std::set<std::string> asked;
    std::unordered_map<std::string, std::string> meant; // by name
    std::string user;
    std::vector<std::string> names; // of the user's attributes
    CountByName misspelt;
};

} // namespace secm::analysis
