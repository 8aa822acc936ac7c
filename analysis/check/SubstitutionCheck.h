#pragma once

#include "analysis/check/CheckedConfiguration.h"
#include "analysis/check/ConfiguredNames.h"
#include "analysis/check/FindingSink.h"
#include "analysis/check/FirstAndCount.h"

#include <string>
#include <vector>

namespace secm::analysis {

/// Checks what texts of the security database do to a template where they replace %values% or a token. What `scope`
/// refers to must outlive it.
class SubstitutionCheck {
public:
    /// `token` is empty when %values% is checked. `attribute` is empty when the texts are granted values. Does not keep
    /// `names`.
    SubstitutionCheck(const CheckedScope& scope, const std::string& token, std::string attribute,
                      ConfiguredNames& names);

    /// `where` names the text in a finding.
    void Check(const std::string& text, const std::string& where);
    /// A user who lacks the attribute, so that the token becomes the empty text.
    void CheckLacking(const std::string& userName) { lacking.Add(userName); }
    /// An empty text leaves a comparison with the empty text, rather than a pattern or nothing at all.
    bool AllowsEmptyText() const { return isUsed && !matchesEverything && !isUnquoted; }
    /// A wildcard in the text matches more than itself.
    bool IsPattern() const { return isPattern; }
    /// One finding for each kind of problem, however many texts have it.
    void Report(FindingSink& sink) const;

private:
    // Adds a place in the filter where a text may stand, between `before` and `behind`.
    void AddPlace(const std::string& before, const std::string& behind);
    bool IsPlain(const std::string& filled) const;
    void CheckSite(const std::string& text, const std::string& where);
    std::string InWords(const FirstAndCount& texts) const;

    void QuotesInside(FindingSink& sink) const;
    void PlaceholdersInside(FindingSink& sink) const;
    void EscapesAtTheEnd(FindingSink& sink) const;
    void NoWords(FindingSink& sink) const;
    void EmptyTexts(FindingSink& sink) const;
    void Wildcards(FindingSink& sink) const;
    void UnknownSites(FindingSink& sink) const;

    CheckedScope scope;
    bool isToken;
    std::string placeholder;
    std::string attributeName;
    bool isUsed = false;                 // the template has the placeholder
    std::string quotes;                  // those that are open at one of the places
    bool isUnquoted = false;             // at one of the places no quote is open
    bool matchesEverything = false;      // at one of the places an empty text leaves only a pattern
    bool isCompared = false;             // behind a comparison of SQL, where a word without quotes is a column's name
    bool isPattern = false;              // behind LIKE or the like
    std::vector<std::string> disturbing; // what the module would look for in the text
    FirstAndCount quoted;
    FirstAndCount disturbed;
    FirstAndCount escaping;
    FirstAndCount noWord;
    FirstAndCount emptied;     // texts that become empty
    bool isOwnEmptied = false; // "%my%" is one of them
    std::string firstEmptied;
    FirstAndCount lacking;
    FirstAndCount wildcards;
    FirstAndCount unknownSites;
    std::string firstUnknownSite;
    const std::vector<std::string>* lookedUp = nullptr; // the codes or sites that the values function knows
};

} // namespace secm::analysis
