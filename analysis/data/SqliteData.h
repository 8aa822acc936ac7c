// Rows in a table of SQLite. Filters are prepared by SQLite itself, and an authorizer lets them read this table and
// call functions, nothing else.
#pragma once

#include "analysis/data/DataSource.h"

#include <sqlite3.h>

#include <chrono>
#include <functional>

namespace secm::analysis {

class SqliteData final : public DataSource {
public:
    struct Close {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    };
    using Database = std::unique_ptr<sqlite3, Close>;

    /// Read-only; waits for locks of writers at most `timeoutSeconds`. Throws DataError.
    static Database OpenFile(const std::string& file, unsigned timeoutSeconds);

    /// Runs the statements in a new database, which goes with the handle. `name` stands for them in messages, which
    /// have the form NAME:LINE:COLUMN: what is wrong. Throws DataError.
    static Database MakeOf(std::string_view statements, const std::string& name, unsigned timeoutSeconds);

    /// Throws DataError when the database has no such table, or the table no such key column.
    SqliteData(Database opened, const DataPlace& place);

    std::uint64_t Count(const RowFilter& filter) override;
    bool Matches(const RowFilter& filter, const std::string& key) override;
    std::vector<std::string> Keys(const RowFilter& filter, std::size_t limit) override;
    RowDifference Difference(const RowFilter& filter, const RowFilter& other, std::size_t limit) override;
    std::vector<ColumnValue> Row(const std::string& key) override;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;
    using RowHandler = std::function<void(sqlite3_stmt*)>;

    static int Authorize(void* self, int action, const char* first, const char* second, const char* database,
                         const char* view);
    static int IsOverdue(void* self);

    void FindTable(const std::string& name);
    void FindKey(const std::string& column);
    void RequireKey() const;
    std::string Condition(const RowFilter& filter);
    Statement Prepare(const std::string& text);
    void ForEachRow(const std::string& select, const std::string* key, bool hasFilter, const RowHandler& handle);
    std::vector<std::string> KeysWhere(const std::string& condition, bool hasFilter, std::size_t limit);
    [[noreturn]] void Fail(bool isOfFilter);

    Database database;
    const unsigned timeoutSeconds;
    std::string table;     // as the database writes it
    std::string quoted;    // for statements
    std::string keyColumn; // likewise; empty: none
    bool keyHasType = true;
    std::chrono::steady_clock::time_point deadline;
};

} // namespace secm::analysis
