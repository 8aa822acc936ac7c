// Rows in a table of PostgreSQL. Each question is a read-only transaction of its own that is rolled back, sent in one
// round trip by the extended protocol, which takes a single statement.
#pragma once

#include "analysis/data/DataSource.h"

#include <libpq-fe.h>

#include <chrono>
#include <functional>

namespace secm::analysis {

class PostgreSqlData final : public DataSource {
public:
    /// `settings` are those of libpq. Throws DataError: no connection, no such table or key column, or a role whose
    /// rights a filter could use for more than reading.
    PostgreSqlData(const std::string& settings, const DataPlace& place);

    std::uint64_t Count(const RowFilter& filter) override;
    bool Matches(const RowFilter& filter, const std::string& key) override;
    std::vector<std::string> Keys(const RowFilter& filter, std::size_t limit) override;
    RowDifference Difference(const RowFilter& filter, const RowFilter& other, std::size_t limit) override;
    std::vector<ColumnValue> Row(const std::string& key) override;

private:
    struct Finish {
        void operator()(PGconn* connection) const { PQfinish(connection); }
    };
    struct Clear {
        void operator()(PGresult* result) const { PQclear(result); }
    };
    using Result = std::unique_ptr<PGresult, Clear>;

    void Connect(const std::string& settings);
    void RequireHarmlessRole(const std::string& tableName);
    void FindTable(const std::string& name);
    void FindKey(const std::string& column);
    void RequireKey() const;
    std::string KeyIs(const std::string& key);
    std::string Literal(const std::string& text);
    std::string Condition(const RowFilter& filter) const;
    /// The statement that is asked about the filters, each of which must be valid alone first.
    Result Ask(const std::string& statement, std::initializer_list<const RowFilter*> filters);
    Result Own(const std::string& statement);
    bool IsInvalid(const std::string& statementOfKey);
    std::vector<std::string> KeysWhere(const std::string& condition, std::size_t limit,
                                       std::initializer_list<const RowFilter*> filters);
    Result NextResult();
    void Send(int wasSent);
    [[noreturn]] void Fail(const PGresult* failed, bool isOfFilter);
    [[noreturn]] void Lose(const std::string& reason);

    std::unique_ptr<PGconn, Finish> server;
    const unsigned timeoutSeconds;
    std::string table;     // for statements, as the server writes it
    std::string keyColumn; // likewise; empty: none
    std::chrono::steady_clock::time_point deadline;
};

} // namespace secm::analysis
