#include "platform/security_manager/sql/DatabaseConnection.h"

#include "platform/KeptUntilUnload.h"
#include "platform/logging/Tmr_LogFile.h"
#include "platform/security_manager/sql/DatabaseAccess.h"
#include "platform/security_manager/sql/SecurityColumns.h"

#include <openssl/crypto.h>
#include <soci/postgresql/soci-postgresql.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <variant>

namespace {

constexpr int noticeLevel = 6;
constexpr int moduleNumber = 198;
constexpr const char* quickCheckVariable = "SECM_QUICK_CHECK";

// In place of the client library's own, which writes to the host's standard error. No exception may reach that library;
// what makes a statement fail is told by its error.
void LogNotice(void* /*unused*/, const char* text) noexcept
try {
    if (TmrGLog.StoreParams("platform/security_manager/sql/DatabaseConnection", __func__, __LINE__, noticeLevel,
                            moduleNumber, 1) != 0) {
        TmrGLog.Log("The security database says: %s", text);
    }
} catch (const std::exception&) {
}

bool WantsQuickCheck()
{
    const char* wanted = std::getenv(quickCheckVariable);
    const std::string text = wanted != nullptr ? wanted : "";
    if (!text.empty() && text != "0" && text != "1") {
        throw std::runtime_error(std::string(quickCheckVariable) + " must be 0 or 1");
    }
    return text == "1";
}

// PostgreSQL's client library uses OpenSSL, which would empty itself when exit() is called, under threads that still
// ask; the first use in the process decides, so a host that uses it earlier decides for itself. When it could not set
// itself up for want of memory, it goes on, and ends the process at the next step.
void PrepareOpenSsl()
{
    if (OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr) != 1 || OSSL_LIB_CTX_get0_global_default() == nullptr) {
        throw std::runtime_error(
            "memory ran out when OpenSSL set itself up, which it does once; start the program again");
    }
}

} // namespace

// The backends are linked, not looked for by SOCI when a text names them: a library that SOCI opens by itself could not
// be unloaded with ours.
DatabaseConnection::DatabaseConnection(const std::string& connectionText, unsigned timeoutSeconds)
{
    const DatabaseAddress address = DatabaseAddressOf(connectionText, timeoutSeconds);
    if (const auto* sqlite = std::get_if<SqliteAddress>(&address)) {
        if (secm::platform::IsExiting()) {
            // SOCI destroys at exit what it looks up the first time that a statement runs on SQLite.
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
            // Row-level security would leave rows out without a word; now the server refuses instead.
            session << "SET row_security = off";
            if (timeoutSeconds != 0) {
                session << "SET statement_timeout = " << timeoutSeconds * 1000;
            }
        }
        RequireTextColumns(session);
    });
    if (WantsQuickCheck()) {
        RequireSound();
    }
}

void DatabaseConnection::RequireWhole()
{
    if (file) {
        file->RequireWhole();
    }
}

void DatabaseConnection::RequireSound()
{
    if (file) {
        file->RequireSound();
    }
}

std::optional<SECM_Concern> DatabaseConnection::Concern()
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
    return SECM_Concern{
        "the server at " + address + " is not this machine, and sslmode is '" + sslMode + "'",
        "whoever can stand between, or answer in the server's name, decides what everybody sees",
        "write sslmode=verify-full and sslrootcert=FILE in the connection text; see docs/operations.md"};
}
