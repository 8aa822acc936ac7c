// A connection to a security database, set up in the same way for requests and for listings.
#pragma once

#include "platform/security_manager/SECM_Listing.h"
#include "platform/security_manager/sql/SqliteFile.h"
#include "platform/security_manager/sql/TimeLimit.h"

#include <soci/soci.h>

#include <functional>
#include <optional>
#include <string>

namespace secm::platform {

/// One thread at a time may use it. Each operation throws std::runtime_error when it fails.
class DatabaseConnection {
public:
    /// Connects within `timeoutSeconds` (0: no limit of our own), which also limits each call of Keep. Throws when
    /// requests could get wrong answers: a text column has another type, an SQLite file is incomplete, or
    /// row-level security would hide rows.
    DatabaseConnection(const std::string& connectionText, unsigned timeoutSeconds);

    soci::session& Session() { return session; }

    /// The database's name for the collation that compares byte for byte.
    const char* BytewiseCollation() const { return file ? "BINARY" : "\"C\""; }

    /// Runs `statements` of the session within the time limit; see TimeLimit.
    void Keep(const std::function<void()>& statements) { timeLimit->Keep(statements); }

    /// Whether the SQLite file's name still leads to the file that is open. True for a server.
    bool IsCurrent() const { return !file || file->IsCurrent(); }

    /// Throws when the SQLite file is incomplete, so that rows may be missing. Call it after reading.
    void RequireWhole();

    /// Reads the whole SQLite file and throws when it is damaged. Does nothing for a server.
    void CheckIntegrity();

    /// The risk that another machine answers in place of the server; nothing when the server is local or verified.
    std::optional<SECM_Risk> Risk();

    /// Closes the connection. Call it before statements of the session are destroyed: otherwise they would send a
    /// message to a server that may not answer.
    void End() { timeLimit.reset(); }

private:
    soci::session session;
    std::optional<SqliteFile> file;     // on SQLite
    std::optional<TimeLimit> timeLimit; // none after End
};

} // namespace secm::platform
