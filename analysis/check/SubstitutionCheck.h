// Texts from a security database on their way into a template.
#pragma once

#include "analysis/check/CheckedConfiguration.h"
#include "analysis/check/Finding.h"

namespace secm::analysis {

/// How many, and the first of them.
struct Tally {
    void Add(const std::string& one);
    /// "2 NOUNs OF; the first is ONE"
    std::string Count(const std::string& noun, const std::string& of = "") const;

    unsigned long long count = 0;
    std::string first;
};

/// What goes into one template from one side: as values, or in place of a token. `scope` must live as long.
class Inlet {
public:
    /// Of values, `token` is empty; of what is granted, `attribute`.
    Inlet(const CheckedScope& scope, const std::string& token, std::string attribute);

    void Look(const std::string& text, const std::string& where);
    void Tell(Report& report) const; ///< One finding for each kind of trouble, however many texts make it.

private:
    // Adds a place in the filter where a text may stand, between `before` and `behind`.
    void AddPlace(const std::string& before, const std::string& behind);
    std::string Counted(const Tally& tally) const;
    void TellEmptied(Report& report) const;

    const CheckedScope scope;
    RulesManager& manager;
    const ConditionRule& condition;
    CFG_Place place;
    bool isToken;
    std::string placeholder;
    std::string attributeName;
    bool isUsed = false;                 // the template has the placeholder
    std::string quotes;                  // those that are open at one of the places
    bool isUnquoted = false;             // at one of the places no quote is open
    bool matchesEverything = false;      // at one of the places an empty text leaves only a pattern
    std::vector<std::string> disturbing; // what the module would look for in the text
    Tally quoted;
    Tally disturbed;
    Tally escaping;
    Tally noWord;
    Tally emptied;             // texts that become empty
    bool isOwnEmptied = false; // "%my%" is one of them
};

} // namespace secm::analysis
