// The file of a session on SQLite. SQLite reads the missing part of a truncated last page as zeros, and goes on with a
// file that was deleted or replaced. Either could make users unknown.
#pragma once

#include "platform/database/ConnectionText.h"

#include <sys/stat.h>

#include <string>

namespace soci {
class session;
}

namespace secm::platform {

/// Opens the file of one session, read-only, and checks it. The session must outlive it. One thread at a time may use
/// it. Each operation throws std::runtime_error when the file is missing or incomplete; the text names the remedy.
class SqliteFile {
public:
    /// Opens `session` on the file and checks that it is complete and in UTF-8. A missing file is not created.
    SqliteFile(soci::session& session, const SqliteAddress& address);

    /// Whether the file's name still leads to the file that is open.
    bool IsCurrent() const;

    /// Checks again that the file is complete, if it or its write-ahead log has changed since the last check. Call it
    /// after reading, so that a cut before or during the reading is noticed.
    void RequireWhole();

    /// Lets SQLite read the whole file, and checks that the text columns hold nothing but text. Takes long for large
    /// files.
    void CheckIntegrity();

private:
    struct stat Status() const;
    void RequireWholeUnderLock();
    void RequireTextKeys();

    soci::session& session;
    const std::string path;      // absolute; may be a link
    struct stat checked;         // of the file when it was last found complete
    unsigned checkedVersion = 0; // SQLite's data version then
};

} // namespace secm::platform
