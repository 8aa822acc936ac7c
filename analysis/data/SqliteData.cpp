#include "analysis/data/SqliteData.h"

#include "analysis/data/SqlExpression.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <optional>
#include <sys/stat.h>

namespace secm::analysis {

namespace {

constexpr int instructionsBetweenLooks = 1000; // of SQLite's virtual machine
constexpr int longestTextBytes = 100'000'000;  // that a filter may build in memory

std::string QuotedName(std::string_view name)
{
    std::string quoted = "\"";
    for (const char character : name) {
        quoted.append(character == '"' ? 1 : 0, '"').push_back(character);
    }
    return quoted + "\"";
}

int RefuseOtherFiles(void* /*unused*/, int action, const char* /*first*/, const char* /*second*/,
                     const char* /*database*/, const char* /*view*/)
{
    // VACUUM INTO writes a file, and attaches it to do so.
    return action == SQLITE_ATTACH || action == SQLITE_DETACH ? SQLITE_DENY : SQLITE_OK;
}

int HasPassed(void* deadline)
{
    return std::chrono::steady_clock::now() > *static_cast<std::chrono::steady_clock::time_point*>(deadline) ? 1 : 0;
}

std::string TooSlow(unsigned seconds)
{
    return fmt::format("not finished within {} s", seconds);
}

// The line and column of a byte in a text, both from 1.
std::pair<std::size_t, std::size_t> LineAndColumn(std::string_view text, std::size_t offset)
{
    const std::string_view before = text.substr(0, offset);
    const std::size_t lineStart = before.rfind('\n') + 1; // 0 when there is none
    return {static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1, offset - lineStart + 1};
}

std::string ColumnText(sqlite3_stmt* row, int column)
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return text == nullptr ? std::string()
                           : std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(row, column)));
}

// Types for which SQLite compares a text with a number as numbers. Columns without such a type never equal a text when
// they hold a number.
bool ConvertsTexts(std::string type)
{
    std::transform(type.begin(), type.end(), type.begin(),
                   [](unsigned char character) { return static_cast<char>(std::toupper(character)); });
    return !type.empty() && type.find("BLOB") == std::string::npos;
}

} // namespace

SqliteData::Database SqliteData::OpenFile(const std::string& file, unsigned timeoutSeconds)
{
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) {
        throw DataError(fmt::format("unable to open database file: {}: {}", file, std::strerror(errno)));
    }
    sqlite3* handle = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr);
    Database database(handle);
    if (result != SQLITE_OK) {
        throw DataError(fmt::format("{}: {}", file, handle != nullptr ? sqlite3_errmsg(handle) : "out of memory"));
    }
    sqlite3_busy_timeout(handle, static_cast<int>(std::min(timeoutSeconds, 2'000'000U) * 1000));
    return database;
}

SqliteData::Database SqliteData::MakeOf(std::string_view statements, const std::string& name, unsigned timeoutSeconds)
{
    sqlite3* handle = nullptr;
    // The empty name is that of a temporary database, which SQLite keeps in memory until it is large.
    const int opened = sqlite3_open_v2("", &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    Database database(handle);
    if (opened != SQLITE_OK) {
        throw DataError(handle != nullptr ? sqlite3_errmsg(handle) : "out of memory");
    }
    if (const std::size_t nul = statements.find('\0'); nul != std::string_view::npos) {
        const auto [line, column] = LineAndColumn(statements, nul);
        throw DataError(fmt::format("{}:{}:{}: a NUL character; SQLite would not read on", name, line, column));
    }
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
    sqlite3_set_authorizer(handle, RefuseOtherFiles, nullptr);
    sqlite3_progress_handler(handle, instructionsBetweenLooks, HasPassed, &deadline);
    for (std::string_view rest = statements; !rest.empty();) {
        sqlite3_stmt* prepared = nullptr;
        const char* end = nullptr;
        int result = sqlite3_prepare_v2(handle, rest.data(), static_cast<int>(rest.size()), &prepared, &end);
        const Statement statement(prepared);
        while (result == SQLITE_OK && prepared != nullptr && sqlite3_step(prepared) == SQLITE_ROW) {
        }
        result = result == SQLITE_OK && prepared != nullptr ? sqlite3_reset(prepared) : result;
        if (result != SQLITE_OK) {
            const auto skipped = std::min(rest.find_first_not_of(" \t\r\n"), rest.size() - 1);
            const int inStatement = sqlite3_error_offset(handle);
            const std::size_t offset =
                statements.size() - rest.size() + (inStatement > 0 ? static_cast<std::size_t>(inStatement) : skipped);
            const auto [line, column] = LineAndColumn(statements, offset);
            throw DataError(fmt::format("{}:{}:{}: {}", name, line, column,
                                        result == SQLITE_INTERRUPT ? TooSlow(timeoutSeconds)
                                        : result == SQLITE_AUTH    ? "statements here must not attach other files"
                                                                   : sqlite3_errmsg(handle)));
        }
        rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    }
    sqlite3_progress_handler(handle, 0, nullptr, nullptr);
    sqlite3_set_authorizer(handle, nullptr, nullptr);
    return database;
}

SqliteData::SqliteData(Database opened, const DataPlace& place)
    : database(std::move(opened)), timeoutSeconds(place.timeoutSeconds)
{
    deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
    FindTable(place.table);
    if (!place.key.empty()) {
        FindKey(place.key);
    }
    sqlite3* handle = database.get();
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr); // what a view calls has no side effects
    sqlite3_exec(handle, "PRAGMA query_only = ON", nullptr, nullptr, nullptr);
    sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, longestTextBytes);
    sqlite3_progress_handler(handle, instructionsBetweenLooks, &SqliteData::IsOverdue, this);
    sqlite3_set_authorizer(handle, &SqliteData::Authorize, this);
}

int SqliteData::Authorize(void* self, int action, const char* first, const char* /*second*/, const char* database,
                          const char* view)
{
    const auto& data = *static_cast<SqliteData*>(self);
    switch (action) {
    case SQLITE_SELECT:
    case SQLITE_FUNCTION:
        return SQLITE_OK;
    case SQLITE_READ: {
        const auto isTable = [&](const char* name) { return name != nullptr && data.table == name; };
        const bool isMain = database == nullptr || std::strcmp(database, "main") == 0;
        return isMain && (isTable(first) || view != nullptr) ? SQLITE_OK : SQLITE_DENY;
    }
    default:
        return SQLITE_DENY;
    }
}

int SqliteData::IsOverdue(void* self)
{
    return HasPassed(&static_cast<SqliteData*>(self)->deadline);
}

void SqliteData::FindTable(const std::string& name)
{
    constexpr std::string_view schema = "main.";
    const std::string sought = name.starts_with(schema) ? name.substr(schema.size()) : name;
    std::string others;
    ForEachRow(
        "SELECT name FROM sqlite_schema WHERE type IN ('table', 'view') AND name NOT LIKE 'sqlite!_%' ESCAPE '!' "
        "ORDER BY name",
        nullptr, false, [&](sqlite3_stmt* row) {
            const std::string found = ColumnText(row, 0);
            if (sqlite3_stricmp(found.c_str(), sought.c_str()) == 0) {
                table = found;
            }
            others += (others.empty() ? "" : ", ") + found;
        });
    if (table.empty()) {
        throw DataError(
            fmt::format("there is no table or view '{}'; the database has {}", name, others.empty() ? "none" : others));
    }
    quoted = QuotedName(table);
}

void SqliteData::FindKey(const std::string& column)
{
    std::string others;
    ForEachRow("SELECT name, type FROM pragma_table_xinfo(?1)", &table, false, [&](sqlite3_stmt* row) {
        const std::string found = ColumnText(row, 0);
        if (sqlite3_stricmp(found.c_str(), column.c_str()) == 0) {
            keyColumn = QuotedName(found);
            keyHasType = ConvertsTexts(ColumnText(row, 1));
        }
        others += (others.empty() ? "" : ", ") + found;
    });
    if (keyColumn.empty()) {
        throw DataError(fmt::format("the table '{}' has no column '{}'; its columns are {}", table, column, others));
    }
}

void SqliteData::RequireKey() const
{
    if (keyColumn.empty()) {
        throw DataError("no key column is named, so single rows cannot be told apart");
    }
}

// Refuses what is only valid in the middle of a statement of ours. A host writes the filter behind WHERE.
std::string SqliteData::Condition(const RowFilter& filter)
{
    if (!filter) {
        return "TRUE";
    }
    if (filter->find('\0') != std::string::npos) {
        throw FilterRefused("the filter contains a NUL character; the engine would not read on");
    }
    const Statement alone = Prepare("SELECT count(*) FROM " + quoted + " WHERE " + *filter);
    if (!alone) {
        Fail(true);
    }
    if (sqlite3_bind_parameter_count(alone.get()) != 0) {
        throw FilterRefused("the filter contains a parameter (?, :NAME, @NAME or $NAME) outside of quotes");
    }
    return "(" + *filter + "\n)"; // the line ends a comment in the filter
}

// Null when SQLite refuses the text, or when it is more than one statement.
SqliteData::Statement SqliteData::Prepare(const std::string& text)
{
    deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
    sqlite3_stmt* prepared = nullptr;
    const char* end = nullptr;
    const int result =
        sqlite3_prepare_v2(database.get(), text.c_str(), static_cast<int>(text.size() + 1), &prepared, &end);
    Statement statement(prepared);
    if (result == SQLITE_OK && end != text.c_str() + text.size()) {
        throw FilterRefused("the filter ends the statement with ';'");
    }
    return statement;
}

void SqliteData::ForEachRow(const std::string& select, const std::string* key, bool hasFilter, const RowHandler& handle)
{
    const Statement statement = Prepare(select);
    if (!statement) {
        Fail(hasFilter);
    }
    if (key != nullptr) {
        sqlite3_bind_text(statement.get(), 1, key->data(), static_cast<int>(key->size()), SQLITE_STATIC);
    }
    int result = SQLITE_ROW;
    while ((result = sqlite3_step(statement.get())) == SQLITE_ROW) {
        handle(statement.get());
    }
    if (result != SQLITE_DONE) {
        Fail(hasFilter);
    }
}

void SqliteData::Fail(bool isOfFilter)
{
    const int code = sqlite3_errcode(database.get());
    const std::string said = code == SQLITE_INTERRUPT ? TooSlow(timeoutSeconds) : sqlite3_errmsg(database.get());
    switch (code) {
    case SQLITE_ERROR:
    case SQLITE_AUTH:
    case SQLITE_INTERRUPT:
    case SQLITE_MISMATCH:
    case SQLITE_RANGE:
    case SQLITE_TOOBIG:
        if (isOfFilter) {
            throw FilterRefused(said);
        }
        [[fallthrough]];
    default:
        throw DataError(said);
    }
}

std::uint64_t SqliteData::Count(const RowFilter& filter)
{
    std::uint64_t count = 0;
    // An expression needs no parentheses, so it is prepared once.
    const std::string condition = filter && IsExpressionOnly(*filter) ? *filter : Condition(filter);
    ForEachRow("SELECT count(*) FROM " + quoted + " WHERE " + condition, nullptr, filter.has_value(),
               [&](sqlite3_stmt* row) { count = static_cast<std::uint64_t>(sqlite3_column_int64(row, 0)); });
    return count;
}

bool SqliteData::Matches(const RowFilter& filter, const std::string& key)
{
    RequireKey();
    bool matches = false;
    ForEachRow("SELECT 1 FROM " + quoted + " WHERE " + (keyHasType ? keyColumn : "CAST(" + keyColumn + " AS TEXT)") +
                   " = ?1 AND " + Condition(filter) + " LIMIT 1",
               &key, filter.has_value(), [&](sqlite3_stmt* /*row*/) { matches = true; });
    return matches;
}

std::vector<std::string> SqliteData::KeysWhere(const std::string& condition, bool hasFilter, std::size_t limit)
{
    std::vector<std::string> keys;
    ForEachRow(fmt::format("SELECT {0} FROM {1} WHERE {2} ORDER BY {0} LIMIT {3}", keyColumn, quoted, condition, limit),
               nullptr, hasFilter, [&](sqlite3_stmt* row) { keys.push_back(ColumnText(row, 0)); });
    return keys;
}

std::vector<std::string> SqliteData::Keys(const RowFilter& filter, std::size_t limit)
{
    RequireKey();
    return KeysWhere(Condition(filter), filter.has_value(), limit);
}

RowDifference SqliteData::Difference(const RowFilter& filter, const RowFilter& other, std::size_t limit)
{
    const std::string condition = Condition(filter) + " IS TRUE AND " + Condition(other) + " IS NOT TRUE";
    const bool hasFilter = filter || other;
    RowDifference difference;
    ForEachRow("SELECT count(*) FROM " + quoted + " WHERE " + condition, nullptr, hasFilter,
               [&](sqlite3_stmt* row) { difference.count = static_cast<std::uint64_t>(sqlite3_column_int64(row, 0)); });
    if (difference.count != 0 && limit != 0) {
        RequireKey();
        difference.keys = KeysWhere(condition, hasFilter, limit);
    }
    return difference;
}

std::vector<ColumnValue> SqliteData::Row(const std::string& key)
{
    RequireKey();
    std::vector<ColumnValue> columns;
    ForEachRow("SELECT * FROM " + quoted + " WHERE " + (keyHasType ? keyColumn : "CAST(" + keyColumn + " AS TEXT)") +
                   " = ?1 LIMIT 1",
               &key, false, [&](sqlite3_stmt* row) {
                   for (int column = 0; column < sqlite3_column_count(row); ++column) {
                       const bool isNull = sqlite3_column_type(row, column) == SQLITE_NULL;
                       columns.emplace_back(sqlite3_column_name(row, column),
                                            isNull ? std::nullopt : std::optional(ColumnText(row, column)));
                   }
               });
    return columns;
}

} // namespace secm::analysis
