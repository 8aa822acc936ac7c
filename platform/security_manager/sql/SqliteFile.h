// The file behind a session on SQLite. SQLite reads what is missing inside of a file's last page as zeros, and goes on
// with a file that has lost its name; either would make users unknown.
#pragma once

#include "platform/security_manager/sql/ConnectionText.h"

#include <sys/stat.h>

#include <string>

namespace soci {
class session;
}

/// Opens the file of one session, read-only, and watches it. The session must outlive it. One thread at a time. What is
/// wrong with the file throws std::runtime_error, which names the remedy.
class SqliteFile {
public:
    /// Opens `session` on the file and makes sure that it can be read as a whole. A missing file is not created.
    SqliteFile(soci::session& session, const SqliteAddress& address);

    /// Whether the file's name still leads to the file that is open.
    bool IsCurrent() const;

    /// Makes sure that the file is whole, when it has changed since it last was. Call it after reading: what was cut
    /// off before is missing now.
    void RequireWhole();

    /// Lets SQLite look through the whole file, and requires that every text that the security tables hold is one: for
    /// checks, not for requests.
    void RequireSound();

private:
    struct stat Status() const;
    void RequireWholeAtRest();
    void RequireTextKeys();

    soci::session& session;
    const std::string path; // of the name that was given, which may be a link
    struct stat checked;    // what the file was like when it was found whole
};
