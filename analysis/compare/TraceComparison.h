// Compares two answers to one request: does the user see more or fewer records? The language of the filters is not
// known, so outcomes are compared and, field by field, values. Where anything else differs, the change is only
// "changed".
#pragma once

#include "analysis/trace/Trace.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace secm::analysis {

/// Wider: the user sees more records. Changed: the answers differ, and which shows more is not known.
enum class Change { wider, changed, narrower, same };

/// "wider", "changed", "narrower" or "same". Any thread may call.
SECM_ANALYSIS_EXPORT const char* NameOf(Change change);

struct FieldChange {
    std::string field;
    Change change = Change::same;
    std::string because;              ///< The reason, where it is not the values; empty otherwise.
    std::vector<std::string> added;   ///< Values that only the later filter has, after the values function.
    std::vector<std::string> removed; ///< Values that only the earlier filter has, likewise.
};

/// What a change means on the rows there are today.
struct RowChange {
    std::uint64_t gained = 0;            ///< Rows that only the later filter lets through.
    std::uint64_t lost = 0;              ///< Rows that only the earlier filter lets through.
    std::vector<std::string> gainedKeys; ///< The first of them; empty when no key column is named.
    std::vector<std::string> lostKeys;
    std::string error; ///< What the engine says against one of the filters; then the numbers mean nothing.
};

struct UserChange {
    std::string user;
    Answer before;
    Answer after;
    Change change = Change::same;
    std::string because;             ///< The reason, where it is not the fields; empty otherwise.
    std::vector<FieldChange> fields; ///< Those that differ.
    std::optional<RowChange> rows;   ///< Only after CompareRows.
};

/// A filter in the settings that differs, whether or not any user gets it today.
struct SettingChange {
    const char* setting;
    const char* users; ///< Who gets it, in words.
    Change change;     ///< Wider or narrower only when one of the two filters is empty.
    std::string before;
    std::string after;
};

/// Holds copies of what it is given. Any thread may compare at any time. Throws nothing but std::bad_alloc.
class TraceComparison {
public:
    /// The settings of the repository before and after. `excludingFields` are the names of fields whose values name
    /// records that are hidden: a further value shows fewer records.
    SECM_ANALYSIS_EXPORT TraceComparison(FilterSettings settingsBefore, FilterSettings settingsAfter,
                                         std::set<std::string> excludingFields);

    /// Compares the traces of one request under the settings before and after.
    SECM_ANALYSIS_EXPORT UserChange Compare(const Trace& before, const Trace& after) const;

    /// Those of the default filter and the hide-all filter that differ.
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
