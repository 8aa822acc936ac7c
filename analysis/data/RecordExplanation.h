// Why a user sees one record or not: which clauses of the filter hold for it.
#pragma once

#include "analysis/Export.h"
#include "analysis/data/DataSource.h"
#include "analysis/trace/Trace.h"

#include <optional>
#include <string>
#include <vector>

namespace secm::analysis {

/// One clause of a user's filter, tried on the record.
struct ClauseOnRecord {
    std::string field;                ///< Empty: the clause is the filter for users who are not known.
    std::string clause;               ///< Of a field that hides every record: the filter that does so.
    std::optional<bool> holds;        ///< No value: the engine refuses the clause when it stands alone.
    std::string error;                ///< What the engine says then.
    std::vector<ColumnValue> columns; ///< The record's values in the columns that the clause names.
};

struct RecordTrace {
    std::string key;
    std::optional<bool> isVisible; ///< No value: the engine refuses the filter.
    std::string error;             ///< What the engine says then.
    std::vector<ClauseOnRecord> clauses;
};

/// Tries the filter and each of its clauses. Throws DataError, also when no row has the key.
SECM_ANALYSIS_EXPORT RecordTrace ExplainRecord(const Trace& trace, DataSource& data, const std::string& key);

} // namespace secm::analysis
