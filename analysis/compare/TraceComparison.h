// Whether a user sees more or less under other rules. The filters' language is not known, so this is told from the
// outcome and, field by field, from the values, and only where nothing else makes a difference.
#pragma once

#include "analysis/trace/Trace.h"

#include <set>
#include <string>
#include <vector>

namespace secm::analysis {

/// Changed: it cannot be told.
enum class Change { wider, changed, narrower, same };

/// "wider", "changed", "narrower" or "same".
SECM_ANALYSIS_EXPORT const char* NameOf(Change change);

struct FieldChange {
    std::string field;
    Change change = Change::same;
    std::string because;              ///< Where the values do not say it: held outright, or why it cannot be told.
    std::vector<std::string> added;   ///< Values that go into the filter, by a values function where there is one.
    std::vector<std::string> removed; ///< Likewise.
};

struct UserChange {
    std::string user;
    Answer before;
    Answer after;
    Change change = Change::same;
    std::string because;             ///< Where the fields do not say it.
    std::vector<FieldChange> fields; ///< That differ.
};

/// A filter that stands in the settings and is another, whether or not it goes to anybody today.
struct SettingChange {
    const char* setting;
    const char* users; ///< To whom it goes.
    Change change;     ///< Wider or narrower only where one of the two is empty.
    std::string before;
    std::string after;
};

/// Holds copies of what it is given. Any thread may compare at any time.
class TraceComparison {
public:
    /// `excludingFields` are those whose values name records that are hidden: a further value shows fewer records.
    SECM_ANALYSIS_EXPORT TraceComparison(FilterSettings settingsBefore, FilterSettings settingsAfter,
                                         std::set<std::string> excludingFields);

    /// Compares the traces of one request under the settings before and after.
    SECM_ANALYSIS_EXPORT UserChange Compare(const Trace& before, const Trace& after) const;

    /// The settings that differ.
    SECM_ANALYSIS_EXPORT std::vector<SettingChange> CompareSettings() const;

private:
    void CompareFields(const Trace& before, const Trace& after, UserChange& user) const;
    FieldChange CompareField(const std::string& name, const FieldTrace* before, const FieldTrace* after) const;
    void CompareClauses(const FieldTrace& before, const FieldTrace& after, FieldChange& field) const;
    void CompareConditions(const FieldTrace& before, const FieldTrace& after, std::size_t index,
                           FieldChange& field) const;
    std::string WhyWrittenOtherwise(const FieldTrace& before, const FieldTrace& after) const;

    FilterSettings before;
    FilterSettings after;
    std::set<std::string> excluding;
};

} // namespace secm::analysis
