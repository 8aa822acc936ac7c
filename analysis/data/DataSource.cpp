#include "analysis/data/DataSource.h"

#include "analysis/data/CommandData.h"
#include "analysis/data/PostgreSqlData.h"
#include "analysis/data/SqliteData.h"
#include "analysis/trace/Trace.h"
#include "platform/database/ConnectionText.h"

#include <fmt/format.h>

namespace secm::analysis {

namespace {

constexpr unsigned defaultTimeoutSeconds = 30;
constexpr std::string_view commandScheme = "command:";

DataPlace WithLimit(DataPlace place)
{
    if (place.timeoutSeconds == 0) {
        place.timeoutSeconds = defaultTimeoutSeconds;
    } else if (place.timeoutSeconds > platform::longestTimeoutSeconds) {
        throw DataError(fmt::format("the time limit must be at most {} seconds", platform::longestTimeoutSeconds));
    }
    return place;
}

void RequireTable(const DataPlace& place)
{
    if (place.table.empty()) {
        throw DataError("no table is named whose rows are to be read");
    }
}

platform::DatabaseAddress AddressOf(const DataPlace& place)
{
    try {
        return platform::DatabaseAddressOf(place.connection, place.timeoutSeconds);
    } catch (const std::runtime_error& error) {
        throw DataError(fmt::format("{}; rows are read from sqlite3://db=FILE, postgresql://... or "
                                    "command:PROGRAM ARGS",
                                    error.what()));
    }
}

} // namespace

DataSource::~DataSource() = default;

std::vector<ColumnValue> DataSource::Row(const std::string& /*key*/)
{
    return {};
}

RowFilter RowFilterOf(const Answer& answer)
{
    return answer.filter.empty() ? RowFilter() : answer.filter;
}

std::unique_ptr<DataSource> OpenData(const DataPlace& place)
{
    const DataPlace limited = WithLimit(place);
    if (limited.connection.starts_with(commandScheme)) {
        return std::make_unique<CommandData>(limited.connection.substr(commandScheme.size()), limited.timeoutSeconds);
    }
    const platform::DatabaseAddress address = AddressOf(limited);
    RequireTable(limited);
    if (const auto* sqlite = std::get_if<platform::SqliteAddress>(&address)) {
        return std::make_unique<SqliteData>(SqliteData::OpenFile(sqlite->file, limited.timeoutSeconds), limited);
    }
    return std::make_unique<PostgreSqlData>(std::get<platform::PostgreSqlAddress>(address).settings, limited);
}

std::unique_ptr<DataSource> OpenDataOfStatements(std::string_view statements, const DataPlace& place)
{
    const DataPlace limited = WithLimit(place);
    RequireTable(limited);
    return std::make_unique<SqliteData>(SqliteData::MakeOf(statements, limited.connection, limited.timeoutSeconds),
                                        limited);
}

} // namespace secm::analysis
