#include "analysis/data/PostgreSqlData.h"

#include "analysis/data/SqlExpression.h"

#include <fmt/format.h>

#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <initializer_list>
#include <new>
#include <string_view>

namespace secm::analysis {

namespace {

constexpr std::string_view invalidValue = "22"; // the class of errors about values of a type
constexpr const char* canceled = "57014";

// The text of a key is no value of the column's type.
class InvalidKey : public DataError {
public:
    using DataError::DataError;
};

std::string SqlStateOf(const PGresult* result)
{
    const char* code = PQresultErrorField(result, PG_DIAG_SQLSTATE);
    return code == nullptr ? "" : code;
}

// Errors of the server, not of a filter: out of resources, shut down, damaged.
bool IsOfServer(const std::string& code)
{
    constexpr std::array<std::string_view, 5> classes = {"53", "57", "58", "F0", "XX"};
    return code.empty() ||
           (code != canceled && std::any_of(classes.begin(), classes.end(),
                                            [&](std::string_view begin) { return code.starts_with(begin); }));
}

std::string WithoutLineEnd(std::string text)
{
    text.erase(text.find_last_not_of("\r\n") + 1);
    return text;
}

std::string FieldText(const PGresult* result, int row, int column)
{
    return {PQgetvalue(result, row, column), static_cast<std::size_t>(PQgetlength(result, row, column))};
}

std::uint64_t FieldNumber(const PGresult* result)
{
    const std::string text = FieldText(result, 0, 0);
    std::uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

} // namespace

PostgreSqlData::PostgreSqlData(const std::string& settings, const DataPlace& place)
    : timeoutSeconds(place.timeoutSeconds)
{
    Connect(settings);
    RequireHarmlessRole(place.table);
    FindTable(place.table);
    if (!place.key.empty()) {
        FindKey(place.key);
    }
}

void PostgreSqlData::Connect(const std::string& settings)
{
    server.reset(PQconnectdb(settings.c_str()));
    if (!server) {
        throw std::bad_alloc();
    }
    if (PQstatus(server.get()) != CONNECTION_OK) {
        throw DataError(WithoutLineEnd(PQerrorMessage(server.get())));
    }
    PQsetNoticeProcessor(
        server.get(), [](void* /*unused*/, const char* /*text*/) {}, nullptr);
    if (PQenterPipelineMode(server.get()) != 1 || PQsetnonblocking(server.get(), 1) != 0) {
        Lose("the connection takes no pipelined statements");
    }
    // A filter that changes these settings changes them for its own transaction, which is rolled back. Row-level
    // security would leave rows out silently; with this setting the server refuses the statement.
    Own("SET row_security = off");
    Own("SET standard_conforming_strings = on");
    Own(fmt::format("SET statement_timeout = {}", timeoutSeconds * 1000ULL));
}

// A filter may change the role to any that the connection's role belongs to.
void PostgreSqlData::RequireHarmlessRole(const std::string& tableName)
{
    const Result found =
        Own("SELECT session_user, string_agg(rolname, ', ' ORDER BY rolname) FROM pg_roles WHERE (rolsuper OR rolname "
            "IN ('pg_read_server_files', 'pg_write_server_files', 'pg_execute_server_program')) AND "
            "pg_has_role(session_user, oid, 'MEMBER')");
    if (PQgetisnull(found.get(), 0, 1) == 0) {
        const std::string user = FieldText(found.get(), 0, 0);
        throw DataError(fmt::format("the role '{}' has the rights of {}, which a filter could use to read or change "
                                    "more than the table; connect as a role that may only read it: CREATE ROLE "
                                    "filter_reader LOGIN; GRANT SELECT ON {} TO filter_reader",
                                    user, FieldText(found.get(), 0, 1), tableName));
    }
}

void PostgreSqlData::FindTable(const std::string& name)
{
    const Result found = Own("SELECT c.oid::regclass::text FROM pg_class c WHERE c.oid = to_regclass(" + Literal(name) +
                             ") AND c.relkind IN ('r', 'v', 'm', 'p', 'f')");
    if (PQntuples(found.get()) == 0) {
        throw DataError(fmt::format("there is no table or view '{}' that the role can find; write a schema before it "
                                    "(SCHEMA.TABLE), and double quotes around a name with capital letters",
                                    name));
    }
    table = FieldText(found.get(), 0, 0);
}

void PostgreSqlData::FindKey(const std::string& column)
{
    const Result found =
        Own("SELECT attname FROM pg_attribute WHERE attrelid = " + Literal(table) +
            "::regclass AND attnum > 0 AND NOT attisdropped ORDER BY (attname <> " + Literal(column) + "), attnum");
    std::string others;
    for (int row = 0; row < PQntuples(found.get()); ++row) {
        others += (row == 0 ? "" : ", ") + FieldText(found.get(), row, 0);
    }
    if (PQntuples(found.get()) == 0 || FieldText(found.get(), 0, 0) != column) {
        throw DataError(fmt::format("the table '{}' has no column '{}'; its columns are {}", table, column, others));
    }
    const std::unique_ptr<char, decltype(&PQfreemem)> quoted(
        PQescapeIdentifier(server.get(), column.data(), column.size()), &PQfreemem);
    if (!quoted) {
        throw std::bad_alloc();
    }
    keyColumn = quoted.get();
}

void PostgreSqlData::RequireKey() const
{
    if (keyColumn.empty()) {
        throw DataError("no key column is named, so single rows cannot be told apart");
    }
}

std::string PostgreSqlData::Literal(const std::string& text)
{
    const std::unique_ptr<char, decltype(&PQfreemem)> literal(
        text.find('\0') == std::string::npos ? PQescapeLiteral(server.get(), text.data(), text.size()) : nullptr,
        &PQfreemem);
    if (!literal) { // out of memory as well
        throw DataError("a text is no UTF-8 or contains a NUL character, which the server does not take");
    }
    return literal.get();
}

// A literal, because a parameter could be named by the filter too.
std::string PostgreSqlData::KeyIs(const std::string& key)
{
    RequireKey();
    return keyColumn + " = " + Literal(key);
}

std::string PostgreSqlData::Condition(const RowFilter& filter) const
{
    return filter ? "(" + *filter + "\n)" : "TRUE"; // the line ends a comment in the filter
}

PostgreSqlData::Result PostgreSqlData::Own(const std::string& statement)
{
    return Ask(statement, {});
}

PostgreSqlData::Result PostgreSqlData::Ask(const std::string& statement,
                                           std::initializer_list<const RowFilter*> filters)
{
    std::vector<std::string> alone; // statements, which are not run
    bool hasFilter = false;
    for (const RowFilter* filter : filters) {
        hasFilter = hasFilter || *filter;
        if (*filter && (*filter)->find('\0') != std::string::npos) {
            throw FilterRefused("the filter contains a NUL character; the server would not read on");
        }
        if (*filter && !IsExpressionOnly(**filter)) {
            alone.push_back("SELECT count(*) FROM " + table + " WHERE " + **filter);
        }
    }
    const bool isAboutFilters = filters.size() != 0;
    PGconn* const connection = server.get();
    deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds + 1);
    const auto send = [&](const std::string& text) {
        Send(PQsendQueryParams(connection, text.c_str(), 0, nullptr, nullptr, nullptr, nullptr, 0));
    };
    if (isAboutFilters) {
        send("BEGIN READ ONLY");
    }
    for (const std::string& text : alone) {
        Send(PQsendPrepare(connection, "", text.c_str(), 0, nullptr));
    }
    send(statement);
    Send(PQpipelineSync(connection));
    if (isAboutFilters) {
        send("ROLLBACK");
        send("SELECT pg_advisory_unlock_all()"); // these locks outlive a transaction
        Send(PQpipelineSync(connection));
    }

    // The answer is that of `statement`, or the first error: of a filter, unless it comes from the clean-up.
    Result answer;
    Result failed;
    for (int syncs = isAboutFilters ? 2 : 1; syncs > 0;) {
        Result result = NextResult();
        if (!result) {
            continue; // the end of one statement's results
        }
        switch (PQresultStatus(result.get())) {
        case PGRES_PIPELINE_SYNC:
            --syncs;
            break;
        case PGRES_TUPLES_OK:
        case PGRES_COMMAND_OK:
            if (!answer || PQresultStatus(answer.get()) == PGRES_COMMAND_OK) {
                answer = std::move(result);
            }
            break;
        case PGRES_PIPELINE_ABORTED:
            break;
        default:
            if (!failed) {
                failed = std::move(result);
            }
        }
    }
    if (failed) {
        Fail(failed.get(), hasFilter);
    }
    return answer;
}

void PostgreSqlData::Send(int wasSent)
{
    if (wasSent != 1) {
        Lose(WithoutLineEnd(PQerrorMessage(server.get())));
    }
}

// Waits for the socket itself: libpq would wait without a limit for a server that hangs.
PostgreSqlData::Result PostgreSqlData::NextResult()
{
    PGconn* const connection = server.get();
    for (;;) {
        const int unsent = PQflush(connection);
        if (unsent < 0 || PQstatus(connection) != CONNECTION_OK) {
            Lose(WithoutLineEnd(PQerrorMessage(connection)));
        }
        if (unsent == 0 && PQisBusy(connection) == 0) {
            return Result(PQgetResult(connection));
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
        pollfd socket{PQsocket(connection), static_cast<short>(POLLIN | (unsent != 0 ? POLLOUT : 0)), 0};
        const int ready = left <= 0 ? 0 : poll(&socket, 1, static_cast<int>(std::min<long>(left, 1'000'000'000)));
        if (ready == 0) {
            Lose(fmt::format("no answer within {} s", timeoutSeconds));
        }
        if ((ready < 0 && errno != EINTR) || (ready > 0 && PQconsumeInput(connection) != 1)) {
            Lose(WithoutLineEnd(PQerrorMessage(connection)));
        }
    }
}

void PostgreSqlData::Fail(const PGresult* failed, bool isOfFilter)
{
    const std::string code = SqlStateOf(failed);
    const char* primary = PQresultErrorField(failed, PG_DIAG_MESSAGE_PRIMARY);
    const std::string said = code == canceled     ? fmt::format("not finished within {} s", timeoutSeconds)
                             : primary != nullptr ? std::string(primary)
                                                  : WithoutLineEnd(PQresultErrorMessage(failed));
    if (isOfFilter && !IsOfServer(code)) {
        throw FilterRefused(said);
    }
    if (code.starts_with(invalidValue)) {
        throw InvalidKey(said);
    }
    throw DataError(said);
}

void PostgreSqlData::Lose(const std::string& reason)
{
    throw DataError("the connection to the server failed: " + reason);
}

std::uint64_t PostgreSqlData::Count(const RowFilter& filter)
{
    return FieldNumber(Ask("SELECT count(*) FROM " + table + " WHERE " + Condition(filter), {&filter}).get());
}

bool PostgreSqlData::Matches(const RowFilter& filter, const std::string& key)
{
    const std::string row = "SELECT 1 FROM " + table + " WHERE " + KeyIs(key);
    try {
        return PQntuples(Ask(row + " AND " + Condition(filter) + " LIMIT 1", {&filter}).get()) != 0;
    } catch (const InvalidKey&) {
        return false;
    } catch (const FilterRefused&) {
        if (IsInvalid(row)) {
            return false;
        }
        throw;
    }
}

// Whether the key's text is no value of the column's type, so that no row has it.
bool PostgreSqlData::IsInvalid(const std::string& statementOfKey)
{
    try {
        Own(statementOfKey + " LIMIT 0");
        return false;
    } catch (const InvalidKey&) {
        return true;
    }
}

std::vector<std::string> PostgreSqlData::KeysWhere(const std::string& condition, std::size_t limit,
                                                   std::initializer_list<const RowFilter*> filters)
{
    const Result rows = Ask(fmt::format("SELECT {0}::text AS text_of_key FROM {1} WHERE {2} ORDER BY {0} LIMIT {3}",
                                        keyColumn, table, condition, limit),
                            filters);
    std::vector<std::string> keys;
    keys.reserve(static_cast<std::size_t>(PQntuples(rows.get())));
    for (int row = 0; row < PQntuples(rows.get()); ++row) {
        keys.push_back(FieldText(rows.get(), row, 0));
    }
    return keys;
}

std::vector<std::string> PostgreSqlData::Keys(const RowFilter& filter, std::size_t limit)
{
    RequireKey();
    return KeysWhere(Condition(filter), limit, {&filter});
}

RowDifference PostgreSqlData::Difference(const RowFilter& filter, const RowFilter& other, std::size_t limit)
{
    const std::string condition = Condition(filter) + " IS TRUE AND " + Condition(other) + " IS NOT TRUE";
    RowDifference difference;
    difference.count =
        FieldNumber(Ask("SELECT count(*) FROM " + table + " WHERE " + condition, {&filter, &other}).get());
    if (difference.count != 0 && limit != 0) {
        RequireKey();
        difference.keys = KeysWhere(condition, limit, {&filter, &other});
    }
    return difference;
}

std::vector<ColumnValue> PostgreSqlData::Row(const std::string& key)
{
    const std::string statement = "SELECT * FROM " + table + " WHERE " + KeyIs(key) + " LIMIT 1";
    std::vector<ColumnValue> columns;
    try {
        const Result row = Own(statement);
        for (int column = 0; PQntuples(row.get()) != 0 && column < PQnfields(row.get()); ++column) {
            const bool isNull = PQgetisnull(row.get(), 0, column) != 0;
            columns.emplace_back(PQfname(row.get(), column),
                                 isNull ? std::nullopt : std::optional(FieldText(row.get(), 0, column)));
        }
    } catch (const InvalidKey&) {
        // No row has it.
    }
    return columns;
}

} // namespace secm::analysis
