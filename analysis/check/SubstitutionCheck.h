#pragma once

#include "analysis/check/CheckedConfiguration.h"
#include "analysis/check/FindingSink.h"
#include "analysis/check/FirstAndCount.h"

#include <string>
#include <vector>

namespace secm::analysis {

/// Checks what texts of the security database do to a template where they replace %values% or a token. What `scope`
/// refers to must outlive it.
class SubstitutionCheck {
public:
    /// `token` is empty when %values% is checked. `attribute` is empty when the texts are granted values.
    SubstitutionCheck(const CheckedScope& scope, const std::string& token, std::string attribute);

    /// `where` names the text in a finding.
    void Check(const std::string& text, const std::string& where);
    /// One finding for each kind of problem, however many texts have it.
    void Report(FindingSink& sink) const;

private:
    // Adds a place in the filter where a text may stand, between `before` and `behind`.
    void AddPlace(const std::string& before, const std::string& behind);
    std::string InWords(const FirstAndCount& texts) const;

    void QuotesInside(FindingSink& sink) const;
    void PlaceholdersInside(FindingSink& sink) const;
    void EscapesAtTheEnd(FindingSink& sink) const;
    void NoWords(FindingSink& sink) const;
    void EmptyTexts(FindingSink& sink) const;

    CheckedScope scope;
    bool isToken;
    std::string placeholder;
    std::string attributeName;
    bool isUsed = false;                 // the template has the placeholder
    std::string quotes;                  // those that are open at one of the places
    bool isUnquoted = false;             // at one of the places no quote is open
    bool matchesEverything = false;      // at one of the places an empty text leaves only a pattern
    std::vector<std::string> disturbing; // what the module would look for in the text
    FirstAndCount quoted;
    FirstAndCount disturbed;
    FirstAndCount escaping;
    FirstAndCount noWord;
    FirstAndCount emptied;     // texts that become empty
    bool isOwnEmptied = false; // "%my%" is one of them
};

} // namespace secm::analysis
