#include "platform/security_manager/sql/DatabaseAccess.h"

#include "platform/database/ConnectionText.h"
#include "platform/logging/Tmr_LogFile.h"

#include <fmt/format.h>
#include <soci/postgresql/soci-postgresql.h>

#include <algorithm>
#include <stdexcept>

namespace secm::platform {

constexpr int failureLevel = 3;

soci::postgresql_session_backend* PostgreSqlOf(soci::session& session)
{
    return session.get_backend_name() == "postgresql"
               ? static_cast<soci::postgresql_session_backend*>(session.get_backend())
               : nullptr;
}

std::string ReasonOf(const std::runtime_error& error)
{
    const auto* ofDatabase = dynamic_cast<const soci::soci_error*>(&error);
    std::string text = ofDatabase != nullptr ? ofDatabase->get_error_message() : error.what();
    text.erase(text.find_last_not_of(" \n") + 1);
    std::replace_if(
        text.begin(), text.end(), [](char character) { return character == '\n' || character == '\t'; }, ' ');
    return text;
}

void LogFailure(const char* function, const std::string& connectionText, const char* what, const std::string& reason)
{
    if (TmrGLog.StoreParams("platform/security_manager/sql/DatabaseAccess", function, __LINE__, failureLevel,
                            databaseLogModule, databaseLogNumber) != 0) {
        TmrGLog.Log("The security database '%s' %s: %s\n", ShownConnectionText(connectionText).c_str(), what,
                    reason.c_str());
    }
}

std::string RowPlace::Text() const
{
    if (userName.data() != nullptr) {
        return fmt::format("{} of '{}'", table, userName);
    }
    return position ? fmt::format("the row of {} at position {}", table, *position) : fmt::format("a row of {}", table);
}

// The interfaces give texts up to their first NUL. A text that ends there would be another name or another resource.
const std::string& TextColumn::At(const RowPlace& place) const
{
    if (indicator == soci::i_null) {
        throw std::runtime_error(place.Text() + " holds NULL where a text must stand");
    }
    if (text.find('\0') != std::string::npos) {
        throw std::runtime_error(place.Text() + " holds a text with a NUL byte; remove it");
    }
    return text;
}

// SQLite stores values of any type in a number column. A value that is no whole number of 32 bits becomes -1 here,
// which PermissionRow::Permission refuses. An is_conditional other than 0 counts as 1, because a condition grants less.
const char* const permissionColumns =
    "security_permission.position, security_permission.permission_name, security_permission.resource,"
    " CASE WHEN security_permission.permission_value BETWEEN 0 AND 4294967295"
    " AND CAST(security_permission.permission_value AS BIGINT) = security_permission.permission_value"
    " THEN security_permission.permission_value ELSE -1 END,"
    " CASE WHEN security_permission.is_conditional = 0 THEN 0 ELSE 1 END";

void PermissionRow::Bind(soci::statement& statement)
{
    statement.exchange(soci::into(position));
    statement.exchange(soci::into(name.text, name.indicator));
    statement.exchange(soci::into(resource.text, resource.indicator));
    statement.exchange(soci::into(value));
    statement.exchange(soci::into(isConditional));
}

PermissionBase PermissionRow::Permission() const
{
    const RowPlace place{"security_permission", {}, position};
    if (value < 0) {
        throw std::runtime_error(
            fmt::format("{} has a permission_value that is no whole number from 0 to 4294967295", place.Text()));
    }
    const bool hasResource = resource.indicator != soci::i_null;
    return {name.At(place).c_str(), static_cast<unsigned>(value), hasResource ? resource.At(place).c_str() : nullptr,
            isConditional != 0};
}

} // namespace secm::platform
