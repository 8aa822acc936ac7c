#include "platform/security_manager/sql/SqliteFile.h"

#include "platform/security_manager/sql/SecurityColumns.h"

#include <fmt/format.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <stdexcept>
#include <utility>

namespace secm::platform {
namespace {

using namespace sqlite_api;

constexpr int headerSize = 100;
constexpr std::size_t pageSizeOffset = 16;
constexpr std::size_t readVersionOffset = 19;
constexpr std::size_t changeCounterOffset = 24;
constexpr std::size_t pageCountOffset = 28;
constexpr std::size_t encodingOffset = 56;
constexpr std::size_t pageCountValidForOffset = 92;
constexpr std::uint8_t writeAheadLog = 2;
constexpr std::uint32_t utf8 = 1;
constexpr sqlite3_int64 largestPageSize = 65536; // stored as 1

sqlite3*& HandleOf(soci::session& session)
{
    return static_cast<soci::sqlite3_session_backend*>(session.get_backend())->conn_;
}

[[noreturn]] void Refuse(sqlite3* handle)
{
    std::string reason = sqlite3_errmsg(handle);
    if (sqlite3_errcode(handle) == SQLITE_READONLY) {
        reason +=
            ": a writer was killed and left its journal, or the files of the write-ahead log cannot be made; open "
            "the file once with sqlite3, as a user who may write";
    }
    throw std::runtime_error(reason);
}

void Run(sqlite3* handle, const char* statement)
{
    if (sqlite3_exec(handle, statement, nullptr, nullptr, nullptr) != SQLITE_OK) {
        Refuse(handle);
    }
}

using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

// Runs the statement up to its first row. `result` is SQLITE_ROW, or SQLITE_DONE when there is no row.
Statement FirstRowOf(sqlite3* handle, const std::string& sql, int& result)
{
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(handle, sql.c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
        Refuse(handle);
    }
    Statement statement(prepared, sqlite3_finalize);
    result = sqlite3_step(prepared);
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        Refuse(handle);
    }
    return statement;
}

bool HasRow(sqlite3* handle, const std::string& sql)
{
    int result = SQLITE_ERROR;
    FirstRowOf(handle, sql, result);
    return result == SQLITE_ROW;
}

// Holds a read transaction, and with it SQLite's shared lock on the file.
class ReadLock {
public:
    explicit ReadLock(sqlite3* locked) : handle(locked)
    {
        Run(handle, "BEGIN");
        try {
            Run(handle, "SELECT 1 FROM sqlite_schema LIMIT 1");
        } catch (...) {
            sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr);
            throw;
        }
    }
    ReadLock(const ReadLock&) = delete;
    ReadLock& operator=(const ReadLock&) = delete;
    ~ReadLock() { sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr); }

private:
    sqlite3* handle;
};

std::uint32_t NumberAt(const std::uint8_t* bytes)
{
    return (std::uint32_t{bytes[0]} << 24U) | (std::uint32_t{bytes[1]} << 16U) | (std::uint32_t{bytes[2]} << 8U) |
           bytes[3];
}

// Whether the write-ahead log holds the pages from `first` to `last`. A checkpoint copies the header, but skips a page
// whose latest state in the log some reader must not see yet. The file may then lack that page for a long time.
bool LogHolds(sqlite3* handle, sqlite3_int64 pageSize, sqlite3_int64 first, sqlite3_int64 last)
{
    constexpr int logHeaderSize = 32;
    constexpr int frameHeaderSize = 24;
    constexpr std::size_t saltOffset = 16;     // in the log's header
    constexpr std::size_t frameSaltOffset = 8; // in a frame's header; frames from before the log was reset differ
    constexpr std::size_t saltSize = 8;
    sqlite3_file* log = nullptr;
    std::array<std::uint8_t, logHeaderSize> header{};
    if (sqlite3_file_control(handle, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log) != SQLITE_OK || log == nullptr ||
        log->pMethods == nullptr || log->pMethods->xRead(log, header.data(), logHeaderSize, 0) != SQLITE_OK) {
        return false;
    }
    std::set<sqlite3_int64> found;
    std::array<std::uint8_t, frameHeaderSize> frame{};
    for (sqlite3_int64 place = logHeaderSize;
         log->pMethods->xRead(log, frame.data(), frameHeaderSize, place) == SQLITE_OK &&
         std::memcmp(frame.data() + frameSaltOffset, header.data() + saltOffset, saltSize) == 0;
         place += frameHeaderSize + pageSize) {
        if (const sqlite3_int64 page = NumberAt(frame.data()); page >= first && page <= last) {
            found.insert(page);
        }
    }
    return static_cast<sqlite3_int64>(found.size()) == last - first + 1;
}

// The file's header on the disk. It is read through SQLite's own descriptor: closing a second one would release the
// locks that SQLite holds on the file.
class Header {
public:
    explicit Header(sqlite3* handle)
    {
        sqlite3_file* file = nullptr;
        const bool isOpen = sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file) == SQLITE_OK &&
                            file->pMethods != nullptr;
        // The size is read last: a checkpoint meanwhile only makes the file longer.
        const int read = isOpen ? file->pMethods->xRead(file, bytes.data(), headerSize, 0) : SQLITE_ERROR;
        if ((read != SQLITE_OK && read != SQLITE_IOERR_SHORT_READ) ||
            file->pMethods->xFileSize(file, &fileSize) != SQLITE_OK) {
            throw std::runtime_error("the file's header cannot be read; restore the file from a backup");
        }
    }

    bool IsEmpty() const { return fileSize == 0; }
    bool IsUtf8() const { return NumberAt(&bytes[encodingOffset]) == utf8; }
    bool HasWriteAheadLog() const { return bytes[readVersionOffset] == writeAheadLog; }

    // Whether the file has all pages that the header counts, and no part of a page. In write-ahead mode the last pages
    // may be in the log, also while a checkpoint is writing them to the file.
    bool IsWhole(sqlite3* handle) const
    {
        const unsigned stored = (unsigned{bytes[pageSizeOffset]} << 8U) | bytes[pageSizeOffset + 1];
        const sqlite3_int64 pageSize = stored == 1 ? largestPageSize : stored;
        if (pageSize == 0) {
            return false;
        }
        const sqlite3_int64 present = fileSize / pageSize;
        const bool isCountValid = NumberAt(&bytes[changeCounterOffset]) == NumberAt(&bytes[pageCountValidForOffset]);
        const sqlite3_int64 count = isCountValid ? NumberAt(&bytes[pageCountOffset]) : 0;
        if (isCountValid && HasWriteAheadLog()) {
            return present >= count || LogHolds(handle, pageSize, present + 1, count);
        }
        return present >= count && fileSize % pageSize == 0;
    }

private:
    std::array<std::uint8_t, headerSize> bytes{};
    sqlite3_int64 fileSize = 0;
};

// Changes with each transaction of others that SQLite has seen, also with those that are only in the write-ahead log.
unsigned DataVersionOf(sqlite3* handle)
{
    unsigned version = 0;
    if (sqlite3_file_control(handle, "main", SQLITE_FCNTL_DATA_VERSION, &version) != SQLITE_OK) {
        Refuse(handle);
    }
    return version;
}

bool IsSameFile(const struct stat& one, const struct stat& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool IsSameTime(const timespec& one, const timespec& other)
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

} // namespace

SqliteFile::SqliteFile(soci::session& watched, const SqliteAddress& address)
    : session(watched), path(std::filesystem::absolute(address.file)), checked(Status())
{
    sqlite3* handle = nullptr;
    const int flags = SQLITE_OPEN_READONLY | (address.sharesCache ? SQLITE_OPEN_SHAREDCACHE : 0);
    const int result = sqlite3_open_v2(path.c_str(), &handle, flags, nullptr);
    // The session was opened on a database in memory, because SOCI's parser of connection texts never ends when memory
    // runs out. The file takes the place of that database.
    sqlite3_close(std::exchange(HandleOf(session), handle));
    if (result != SQLITE_OK) {
        throw std::runtime_error(handle != nullptr ? sqlite3_errmsg(handle) : "out of memory");
    }
    sqlite3_busy_timeout(handle, static_cast<int>(address.timeoutSeconds * 1000));
    RequireWholeUnderLock();
}

struct stat SqliteFile::Status() const
{
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        throw std::runtime_error(fmt::format("unable to open database file: {}: {}", path, std::strerror(errno)));
    }
    if (!S_ISREG(status.st_mode)) {
        throw std::runtime_error(fmt::format("unable to open database file: {} is no regular file", path));
    }
    return status;
}

bool SqliteFile::IsCurrent() const
{
    return IsSameFile(Status(), checked);
}

void SqliteFile::RequireWhole()
{
    const struct stat now = Status();
    // When another file has taken the name, the next request connects to it.
    if (!IsSameFile(now, checked) ||
        (now.st_size == checked.st_size && IsSameTime(now.st_mtim, checked.st_mtim) &&
         IsSameTime(now.st_ctim, checked.st_ctim) && DataVersionOf(HandleOf(session)) == checkedVersion)) {
        return;
    }
    RequireWholeUnderLock();
    checked = now;
}

void SqliteFile::RequireWholeUnderLock()
{
    sqlite3* handle = HandleOf(session);
    const ReadLock lock(handle);
    const Header header(handle);
    if (!header.IsEmpty() && !header.IsUtf8()) {
        throw std::runtime_error("the file's texts are in UTF-16, which cannot be read; make a new file of it, with "
                                 "PRAGMA encoding = 'UTF-8'");
    }
    if (!header.IsEmpty() && !header.IsWhole(handle)) {
        throw std::runtime_error(
            "the file is shorter than its header says, so rows are missing; restore it from a backup");
    }
    // SQLite reads any log that stands beside a file, in place of the file's own pages.
    const char* log = sqlite3_filename_wal(sqlite3_db_filename(handle, "main"));
    struct stat status {};
    if (!header.HasWriteAheadLog() && stat(log, &status) == 0 && status.st_size != 0) {
        throw std::runtime_error(fmt::format("the write-ahead log beside the file belongs to another file, which had "
                                             "this name before; remove {} and the -shm beside it",
                                             log));
    }
    RequireTextKeys();
    checkedVersion = DataVersionOf(handle);
}

// SQLite stores values of any type in a text column; a name that is no text is never found. Numbers sort before all
// texts and BLOBs after them, so an index finds both quickly.
void SqliteFile::RequireTextKeys()
{
    for (const SecurityColumn& column : textColumns) {
        if (column.indexPrefix == nullptr) {
            continue;
        }
        const std::string rows =
            std::string("SELECT 1 FROM ") + column.table + " WHERE " + column.indexPrefix + column.name;
        if (HasRow(HandleOf(session), rows + " < '' LIMIT 1") || HasRow(HandleOf(session), rows + " >= x'' LIMIT 1")) {
            throw std::runtime_error(NotText(column));
        }
    }
}

void SqliteFile::CheckIntegrity()
{
    sqlite3* handle = HandleOf(session);
    int result = SQLITE_ERROR;
    const Statement check = FirstRowOf(handle, "PRAGMA quick_check(1)", result);
    const auto* said = reinterpret_cast<const char*>(sqlite3_column_text(check.get(), 0));
    if (result != SQLITE_ROW || said == nullptr || std::strcmp(said, "ok") != 0) {
        throw std::runtime_error(
            fmt::format("the file is damaged: {}; restore it from a backup", said != nullptr ? said : "no result"));
    }
    for (const SecurityColumn& column : textColumns) {
        if (HasRow(handle, std::string("SELECT 1 FROM ") + column.table + " WHERE typeof(" + column.name +
                               ") NOT IN ('text', 'null') LIMIT 1")) {
            throw std::runtime_error(NotText(column));
        }
    }
}

} // namespace secm::platform
