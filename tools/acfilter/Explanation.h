// An explained answer, for people and for programs.
#pragma once

#include "tools/acfilter/Account.h"
#include "tools/acfilter/DefinitionNames.h"

struct Explanation {
    std::string repository;
    Account account;
    std::vector<DefinitionNames> names; ///< Of the manager's definitions.
    WhatIf tried;
};

/// Why the answer is the hide-all filter, or the default filter; empty: it is neither.
std::string WhyNotComposed(const Explanation& explanation);

/// Why a condition adds nothing; empty: it does.
std::string WhyEmpty(const ConditionAccount& condition);

/// Whether a field that is not held outright leaves the user unrestricted all the same.
bool RestrictsNothing(const FieldAccount& field);

inline constexpr const char* noRestriction = "no restriction: every record is visible";

struct TextStyle {
    bool isFull = false; ///< Else long lists and texts are cut short, with what they would be.
    bool hasColours = false;
    bool isForTerminal = false; ///< Then no control character of the filter goes out as it is.
};

std::string ExplanationText(const Explanation& explanation, const TextStyle& style);

/// One JSON object and a line end; bytes that are not UTF-8 become U+FFFD.
std::string ExplanationJson(const Explanation& explanation);
