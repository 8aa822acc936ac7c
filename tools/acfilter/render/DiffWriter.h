// Who sees more or less than before, for people and for programs: a summary, then the users by kind of change.
#pragma once

#include "analysis/compare/TraceComparison.h"
#include "tools/acfilter/render/TextOutput.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace secm::acfilter {

/// The changes whose users are shown one by one, in the order in which they are shown.
inline constexpr std::array shownChanges = {analysis::Change::wider, analysis::Change::changed,
                                            analysis::Change::narrower};

struct DiffHead {
    std::string repository;
    std::string before; ///< The configurations, as they were asked for.
    std::string after;
    bool hasOtherDatabase = false;
    std::vector<std::string> excluding;
    analysis::WhatIf tried; ///< On the side after.
    std::string data;       ///< The rows that filters are compared on; empty: none.
};

/// A user whom neither side knows.
struct UnknownUser {
    std::string name;
    std::string known; ///< The name without blanks around it, when one side knows a user of that name; else empty.
};

/// What is written before the users.
struct DiffSummary {
    unsigned long long CountOfAll() const { return counts[0] + counts[1] + counts[2] + counts[3]; }
    unsigned long long CountOf(analysis::Change change) const { return counts.at(static_cast<std::size_t>(change)); }

    /// Whether a user or a setting has this change.
    bool Holds(analysis::Change change) const;

    /// Whether a user sees more: by values or outcome, or by rows.
    bool HasMore() const { return Holds(analysis::Change::wider) || gainCount != 0; }

    /// Whether there is a change of which it is not known, also not by rows, whether somebody sees more.
    bool HasUnsettled() const;

    DiffHead head;
    std::vector<analysis::SettingChange> settings;
    std::array<unsigned long long, 4> counts{}; ///< Of users, indexed by analysis::Change.
    unsigned long long gainCount = 0;           ///< Of users who see rows that they did not see.
    unsigned long long unsettledCount = 0;      ///< Of users whose change is `changed`, without an answer of rows.
    unsigned long long refusedCount = 0;        ///< Of users with a filter that the engine refuses.
    unsigned long long unknownCount = 0;        ///< Of users whom neither side knows; `counts` holds them too.
    std::vector<UnknownUser> firstUnknown;      ///< At most five of them.
};

std::string SummaryText(const DiffSummary& summary);
std::string SummaryJson(const DiffSummary& summary);
std::string UserChangeText(const analysis::UserChange& user, bool isFull);
std::string UserChangeJson(const analysis::UserChange& user);

/// Writes to an output, which must outlive it. Add and Finish throw std::runtime_error when something cannot be
/// written. The users wait for the summary in the output's waiting lines, so memory does not grow with their number.
class DiffWriter {
public:
    /// `forPrograms`: JSON; false: text. `isFull`: in text, long lists and texts are not cut short.
    DiffWriter(DiffHead head, TextOutput& textOutput, bool forPrograms, bool isFull);

    void Add(const analysis::UserChange& user);
    void Add(const analysis::SettingChange& setting) { summary.settings.push_back(setting); }

    /// Counts a user whom neither side knows. The user is added by Add as well.
    void AddUnknown(const UnknownUser& user);

    const DiffSummary& Summary() const { return summary; }

    /// Once, after everything is added.
    void Finish();

private:
    TextOutput& output;
    bool isForPrograms;
    bool areTextsWhole;
    DiffSummary summary;
    std::array<std::unique_ptr<WaitingLines>, shownChanges.size()> users; // indexed by analysis::Change
};

} // namespace secm::acfilter
