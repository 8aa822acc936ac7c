#include "platform/security_manager/sql/DatabaseConnection.h"

#include "platform/KeptUntilUnload.h"
#include "platform/database/ConnectionText.h"
#include "platform/logging/Tmr_LogFile.h"
#include "platform/security_manager/sql/DatabaseAccess.h"
#include "platform/security_manager/sql/SecurityColumns.h"

#include <fmt/format.h>
#include <openssl/crypto.h>
#include <soci/postgresql/soci-postgresql.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <variant>

namespace secm::platform {
namespace {

constexpr int noticeLevel = 6; // of new connections too
constexpr const char* quickCheckVariable = "SECM_QUICK_CHECK";

// Replaces the client library's own function, which writes to the host's standard error. No exception may reach that
// library. A notice never explains a failure, so it may be lost.
void LogNotice(void* /*unused*/, const char* text) noexcept
try {
    if (TmrGLog.StoreParams("platform/security_manager/sql/DatabaseConnection", __func__, __LINE__, noticeLevel,
                            databaseLogModule, databaseLogNumber) != 0) {
        TmrGLog.Log("The security database says: %s", text);
    }
} catch (const std::exception&) {
}

// Which of several servers it is, and what names the connection there; empty on SQLite.
std::string ServerOf(soci::session& session)
{
    const soci::postgresql_session_backend* postgreSql = PostgreSqlOf(session);
    if (postgreSql == nullptr) {
        return "";
    }
    const PGconn* server = postgreSql->conn_;
    return fmt::format(" (server {}, port {}, process {})", PQhost(server), PQport(server), PQbackendPID(server));
}

void LogConnection(const std::string& connectionText, soci::session& session)
{
    if (TmrGLog.StoreParams("platform/security_manager/sql/DatabaseConnection",
                            "DatabaseConnection::DatabaseConnection", __LINE__, noticeLevel, databaseLogModule,
                            databaseLogNumber) != 0) {
        TmrGLog.Log("Connected to the security database '%s'%s\n", ShownConnectionText(connectionText).c_str(),
                    ServerOf(session).c_str());
    }
}

bool WantsQuickCheck()
{
    const char* wanted = std::getenv(quickCheckVariable);
    const std::string text = wanted != nullptr ? wanted : "";
    if (!text.empty() && text != "0" && text != "1") {
        throw std::runtime_error(
            fmt::format("{} is '{}'; set it to 1 to check the whole file with each new connection, or to 0",
                        quickCheckVariable, text));
    }
    return text == "1";
}

// PostgreSQL's client library uses OpenSSL, which frees its data in exit() while other threads still use it, unless it
// is told not to. Only the first call in the process counts, so a host that uses OpenSSL earlier decides itself. When
// memory runs out in this call, OpenSSL would end the process later.
void PrepareOpenSsl()
{
    if (OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr) != 1 || OSSL_LIB_CTX_get0_global_default() == nullptr) {
        throw std::runtime_error(
            "memory ran out while OpenSSL was initialized, which happens only once; start the program again");
    }
}

} // namespace

// SOCI's backends are linked: a backend that SOCI loads by its name would not be unloaded with our library.
DatabaseConnection::DatabaseConnection(const std::string& connectionText, unsigned timeoutSeconds)
{
    const DatabaseAddress address = DatabaseAddressOf(connectionText, timeoutSeconds);
    if (const auto* sqlite = std::get_if<SqliteAddress>(&address)) {
        if (IsExiting()) {
            // The first statement of a connection uses static data of SOCI, which exit() destroys.
            throw std::runtime_error("the process is exiting; no new connection is made");
        }
        session.open(*soci::factory_sqlite3(), ":memory:");
        file.emplace(session, *sqlite);
    } else {
        PrepareOpenSsl();
        session.open(*soci::factory_postgresql(), std::get<PostgreSqlAddress>(address).settings);
        PQsetNoticeProcessor(PostgreSqlOf(session)->conn_, LogNotice, nullptr);
    }
    timeLimit.emplace(session, timeoutSeconds);
    Keep([&] {
        if (!file) {
            // Row-level security would leave rows out silently. With this setting the server refuses the statement.
            session << "SET row_security = off";
            if (timeoutSeconds != 0) {
                session << "SET statement_timeout = " << timeoutSeconds * 1000;
            }
        }
        RequireTextColumns(session);
    });
    if (WantsQuickCheck()) {
        CheckIntegrity();
    }
    LogConnection(connectionText, session);
}

void DatabaseConnection::RequireWhole()
{
    if (file) {
        file->RequireWhole();
    }
}

void DatabaseConnection::CheckIntegrity()
{
    if (file) {
        file->CheckIntegrity();
    }
}

std::optional<SECM_Risk> DatabaseConnection::Risk()
{
    if (file) {
        return std::nullopt;
    }
    PGconn* server = PostgreSqlOf(session)->conn_;
    const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> options(PQconninfo(server), &PQconninfoFree);
    if (!options) {
        throw std::bad_alloc();
    }
    std::string sslMode;
    for (const PQconninfoOption* option = options.get(); option->keyword != nullptr; ++option) {
        if (std::strcmp(option->keyword, "sslmode") == 0 && option->val != nullptr) {
            sslMode = option->val;
        }
    }
    const std::string address = PQhostaddr(server);
    if (!CanBeImpersonated(address, sslMode)) {
        return std::nullopt;
    }
    return SECM_Risk{fmt::format("the server at {} is not this machine, and sslmode is '{}'", address, sslMode),
                     "whoever can stand between, or answer in the server's name, decides what everybody sees",
                     "write sslmode=verify-full and sslrootcert=FILE in the connection text; see docs/operations.md"};
}

} // namespace secm::platform
