// A connection to a security database, opened and set up alike for whoever asks.
#pragma once

#include "platform/security_manager/SECM_Listing.h"
#include "platform/security_manager/sql/SqliteFile.h"
#include "platform/security_manager/sql/TimeLimit.h"

#include <soci/soci.h>

#include <functional>
#include <optional>
#include <string>

/// One thread at a time. What goes wrong throws std::runtime_error.
class DatabaseConnection {
public:
    /// Connects within `timeoutSeconds` (0: no limit of our own), which limits each call of Keep as well, and makes
    /// sure that the database can be trusted: its text columns hold text, a file is whole, no row is kept from us.
    DatabaseConnection(const std::string& connectionText, unsigned timeoutSeconds);

    soci::session& Session() { return session; }

    /// The collation that compares byte for byte, as the database calls it.
    const char* BytewiseCollation() const { return file ? "BINARY" : "\"C\""; }

    /// Runs `statements` of the session within the time limit, as TimeLimit does.
    void Keep(const std::function<void()>& statements) { timeLimit->Keep(statements); }

    /// Whether it still leads to the database that its text names; a file may have been replaced.
    bool IsCurrent() const { return !file || file->IsCurrent(); }

    /// Makes sure that what was read was whole.
    void RequireWhole();

    /// Looks through a whole file for damage.
    void RequireSound();

    /// What lets somebody between us and the server answer in its place; nothing when nobody can.
    std::optional<SECM_Concern> Concern();

    /// Ends the connection. Call it before statements of the session go, which else would take leave of a server that
    /// may have stopped.
    void End() { timeLimit.reset(); }

private:
    soci::session session;
    std::optional<SqliteFile> file;     // on SQLite
    std::optional<TimeLimit> timeLimit; // until the end
};
