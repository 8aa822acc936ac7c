#pragma once

#include "analysis/check/FindingSink.h"
#include "analysis/check/FirstAndCount.h"
#include "analysis/check/UserDirectory.h"
#include "platform/security_manager/SECM_Listing.h"

#include <map>
#include <string>
#include <utility>

namespace secm::analysis {

/// Texts of the security database that look like something else: with blanks or invisible characters, or so much alike
/// that people cannot tell them apart.
class NameCheck {
public:
    void Check(const SECM_Member& member);
    /// `grant` is of a permission that a field asks for.
    void Check(const SECM_Grant& grant);
    void Check(const SECM_Attribute& attribute);
    /// `directory` holds all users.
    void Report(const UserDirectory& directory, FindingSink& sink) const;

private:
    void CheckText(const char* column, const std::string& text, const std::string& row);

    struct FlawedTexts {
        FirstAndCount texts;
        std::string remedy; // for the first
    };

    std::map<std::pair<std::string, std::string>, FlawedTexts> flaws; // by column and flaw
    FirstAndCount reservedNames; // users without a name, or in the group that hosts mean by none
};

} // namespace secm::analysis
