// Runs filters on real rows: how many rows a filter lets through, whether it lets through one row, and which. Reading
// only: whatever a filter contains, it changes nothing in the engine and does not outlive its question.
#pragma once

#include "analysis/Export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace secm::analysis {

struct Answer;

/// The engine refuses a filter, or does not finish with it in time. what() is what the engine says. The source can be
/// used again.
class SECM_ANALYSIS_EXPORT FilterRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The rows cannot be asked about: no such file, server, program, table or column, or the engine is lost. what() names
/// the place and the remedy. The source must not be used again.
class SECM_ANALYSIS_EXPORT DataError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A filter as a host applies it. No value: no restriction.
using RowFilter = std::optional<std::string>;

/// No value for an empty text, which hosts do not apply, whatever the outcome.
SECM_ANALYSIS_EXPORT RowFilter RowFilterOf(const Answer& answer);

/// Where the rows are.
struct DataPlace {
    std::string connection;      ///< sqlite3://db=FILE, postgresql://... or command:PROGRAM ARGS.
    std::string table;           ///< SQL only; a schema may stand before it: archive.documents.
    std::string key;             ///< SQL only: a column that tells rows apart; empty where only rows are counted.
    unsigned timeoutSeconds = 0; ///< For connecting and for each question; 0: 30 seconds.
};

/// Rows of one filter that another one does not let through.
struct RowDifference {
    std::uint64_t count = 0;
    std::vector<std::string> keys; ///< The first of them, in the engine's order.
};

/// A column of a row; no value for NULL.
using ColumnValue = std::pair<std::string, std::optional<std::string>>;

/// The rows of one table, or of one program. One object serves one thread at a time; objects share nothing. Each
/// operation throws FilterRefused and DataError. Those with keys throw DataError when the place names no key column.
class SECM_ANALYSIS_EXPORT DataSource {
public:
    virtual ~DataSource();

    virtual std::uint64_t Count(const RowFilter& filter) = 0;

    /// Whether the filter is true for the row. False as well when no row has the key.
    virtual bool Matches(const RowFilter& filter, const std::string& key) = 0;

    /// The keys of at most `limit` rows that the filter lets through.
    virtual std::vector<std::string> Keys(const RowFilter& filter, std::size_t limit) = 0;

    /// Rows for which `filter` is true and `other` is not (a comparison with NULL is not true), with the keys of at
    /// most `limit` of them.
    virtual RowDifference Difference(const RowFilter& filter, const RowFilter& other, std::size_t limit) = 0;

    /// The columns of the row, in the table's order. Empty when the engine does not tell them, or no row has the key.
    virtual std::vector<ColumnValue> Row(const std::string& key);
};

/// Opens the rows for reading. Throws DataError.
SECM_ANALYSIS_EXPORT std::unique_ptr<DataSource> OpenData(const DataPlace& place);

/// The rows that SQL statements make in a new SQLite database, which goes with the source. The statements cannot reach
/// other files. `place.connection` is not used. Throws DataError, with the line of the statement that failed.
SECM_ANALYSIS_EXPORT std::unique_ptr<DataSource> OpenDataOfStatements(std::string_view statements,
                                                                      const DataPlace& place);

} // namespace secm::analysis
