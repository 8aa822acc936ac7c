#include "platform/security_manager/sql/SecurityColumns.h"

#include "platform/security_manager/sql/DatabaseAccess.h"

#include <fmt/format.h>
#include <soci/postgresql/soci-postgresql.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace secm::platform {
namespace {

// Numbers of PostgreSQL's built-in types.
constexpr Oid textType = 25;
constexpr Oid varcharType = 1043;

// All columns, and no row.
std::string SelectOfColumns()
{
    std::string columns;
    for (const SecurityColumn& column : textColumns) {
        columns.append(columns.empty() ? "SELECT " : ", ").append(column.table).append(".").append(column.name);
    }
    return columns + " FROM security_user, security_attribute, security_permission WHERE 1 = 0";
}

// Follows SQLite's rules of column affinity. An expression of a view has no declared type (null); SqliteFile checks its
// values instead.
bool IsTextType(const char* declared)
{
    if (declared == nullptr) {
        return true;
    }
    std::string type = declared;
    std::transform(type.begin(), type.end(), type.begin(),
                   [](unsigned char character) { return static_cast<char>(std::toupper(character)); });
    const auto has = [&](const char* part) { return type.find(part) != std::string::npos; };
    return !has("INT") && (has("CHAR") || has("CLOB") || has("TEXT"));
}

void RequireOnSqlite(sqlite_api::sqlite3* handle)
{
    sqlite_api::sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(handle, SelectOfColumns().c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(handle));
    }
    const std::unique_ptr<sqlite_api::sqlite3_stmt, decltype(&sqlite_api::sqlite3_finalize)> statement(
        prepared, sqlite_api::sqlite3_finalize);
    int number = 0;
    for (const SecurityColumn& column : textColumns) {
        if (!IsTextType(sqlite3_column_decltype(prepared, number++))) {
            throw std::runtime_error(NotText(column));
        }
    }
}

void RequireOnPostgreSql(PGconn* connection)
{
    const std::unique_ptr<PGresult, decltype(&PQclear)> answer(PQexec(connection, SelectOfColumns().c_str()), PQclear);
    if (PQresultStatus(answer.get()) != PGRES_TUPLES_OK) {
        throw std::runtime_error(PQerrorMessage(connection));
    }
    int number = 0;
    for (const SecurityColumn& column : textColumns) {
        const Oid type = PQftype(answer.get(), number++);
        if (type != textType && type != varcharType) {
            throw std::runtime_error(NotText(column));
        }
    }
}

} // namespace

std::string NotText(const SecurityColumn& column)
{
    return fmt::format("the column {}.{} must be of the type VARCHAR or TEXT and hold nothing but text; change its "
                       "type, or the rows that hold something else",
                       column.table, column.name);
}

void RequireTextColumns(soci::session& session)
{
    if (const auto* postgreSql = PostgreSqlOf(session)) {
        RequireOnPostgreSql(postgreSql->conn_);
    } else {
        RequireOnSqlite(static_cast<soci::sqlite3_session_backend*>(session.get_backend())->conn_);
    }
}

} // namespace secm::platform
