// A whole public request on a real database, compared with its statements made by the database's own interface.
#include "bench/BenchManager.h"
#include "bench/ConfigurationFile.h"
#include "bench/Measure.h"
#include "bench/SecuritySql.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace secm::bench {

namespace {

using Connection = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

void Require(bool isDone, sqlite3* connection)
{
    if (!isDone) {
        throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(connection));
    }
}

Connection Opened(const std::string& path, int flags)
{
    sqlite3* opened = nullptr;
    const int status = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    Connection connection(opened, &sqlite3_close);
    Require(status == SQLITE_OK, opened);
    return connection;
}

// Holds the users of all workloads. Removed when the process ends.
class DatabaseFile {
public:
    static const DatabaseFile& Instance()
    {
        static const DatabaseFile file;
        return file;
    }

    ~DatabaseFile()
    {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    DatabaseFile(const DatabaseFile&) = delete;
    DatabaseFile& operator=(const DatabaseFile&) = delete;

    const std::string path =
        std::filesystem::temp_directory_path() / ("filter_bench-" + std::to_string(getpid()) + ".db");

private:
    DatabaseFile()
    {
        std::filesystem::remove(path); // left by a killed process with the same number
        const Connection connection = Opened(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        const std::string sql = "BEGIN;" + SecuritySql() + "COMMIT;";
        Require(sqlite3_exec(connection.get(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, connection.get());
    }
};

std::string SQLiteConnection()
{
    return "sqlite3://db=" + DatabaseFile::Instance().path;
}

// The manager of a workload. Throws unless it answers as a manager with the same user in memory. Made once: its
// connections stay open until the process ends.
SECM_AccessControlInterface& ConnectedManager(const Workload& workload, const std::string& connectionText)
{
    static std::map<std::string, std::unique_ptr<SECM_AccessControlInterface>> managers;
    std::unique_ptr<SECM_AccessControlInterface>& manager = managers[connectionText + ' ' + workload.name];
    if (!manager) {
        BenchManager inMemory(workload);
        const std::string expected =
            static_cast<SECM_AccessControlInterface&>(inMemory).GetAccessControlFilter(workload.name);
        Configure(ConfigurationOf(workload));
        auto connected = std::make_unique<SECM_AccessControlManager>(workloadRepository);
        if (!connected->InitSecurityConnection(connectionText.c_str(), 0)) {
            throw std::runtime_error("no connection to the database; the log says why");
        }
        manager = std::move(connected);
        if (manager->GetAccessControlFilter(workload.name, workloadAddress) != expected) {
            throw std::runtime_error(std::string("another filter from the database than from memory for ") +
                                     workload.name + "; load it with the output of filter_bench --security_sql");
        }
    }
    return *manager;
}

// All connections that the process opens to SQLite.
std::vector<sqlite3*>& OpenedConnections()
{
    static std::vector<sqlite3*> connections;
    return connections;
}

int NoteConnection(sqlite3* connection, char** /*error*/, const sqlite3_api_routines* /*unused*/)
{
    OpenedConnections().push_back(connection);
    return SQLITE_OK;
}

int NoteStatement(unsigned /*event*/, void* statements, void* statement, void* /*text*/)
{
    static_cast<std::vector<std::string>*>(statements)
        ->emplace_back(sqlite3_sql(static_cast<sqlite3_stmt*>(statement)));
    return 0;
}

// Taken from SQLite, so that the benchmark compares with the statements that a request really makes.
std::vector<std::string> StatementsOfARequest()
{
    const auto note = reinterpret_cast<void (*)()>(&NoteConnection);
    sqlite3_auto_extension(note);
    Configure(ConfigurationOf(smallWorkload));
    SECM_AccessControlManager manager(workloadRepository);
    manager.InitSecurityConnection(SQLiteConnection().c_str(), 0);
    sqlite3_cancel_auto_extension(note);

    std::vector<std::string> statements;
    for (sqlite3* connection : OpenedConnections()) {
        sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, &NoteStatement, &statements);
    }
    static_cast<SECM_AccessControlInterface&>(manager).GetAccessControlFilter(smallWorkload.name, workloadAddress);
    for (sqlite3* connection : OpenedConnections()) {
        sqlite3_trace_v2(connection, 0, nullptr, nullptr);
    }
    if (statements.empty()) {
        throw std::runtime_error("a request asked SQLite nothing");
    }
    return statements;
}

std::size_t LengthOf(sqlite3_stmt* statement, int column)
{
    return static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
}

// One vector for each column. NULL is an empty text.
using Columns = std::vector<std::vector<std::string>>;

void AppendRows(Columns& columns, sqlite3_stmt* statement, const std::string& user)
{
    sqlite3_reset(statement);
    for (int parameter = 1; parameter <= sqlite3_bind_parameter_count(statement); ++parameter) {
        sqlite3_bind_text(statement, parameter, user.data(), static_cast<int>(user.size()), SQLITE_STATIC);
    }
    columns.resize(static_cast<std::size_t>(sqlite3_column_count(statement)));
    int status = SQLITE_OK;
    while ((status = sqlite3_step(statement)) == SQLITE_ROW) {
        for (std::size_t index = 0; index < columns.size(); ++index) {
            const int column = static_cast<int>(index);
            const unsigned char* text = sqlite3_column_text(statement, column);
            columns[index].emplace_back(reinterpret_cast<const char*>(text), LengthOf(statement, column));
        }
    }
    Require(status == SQLITE_DONE, sqlite3_db_handle(statement));
    sqlite3_reset(statement);
}

void RequestSQLite(benchmark::State& state, const Workload& workload)
{
    SECM_AccessControlInterface& accessControl = ConnectedManager(workload, SQLiteConnection());
    const std::string user = workload.name;
    const std::string address = workloadAddress;
    const auto request = [&] { return accessControl.GetAccessControlFilter(user, address); };
    Measure(state, request);
    // SQLite's own memory, which operator new does not see.
    sqlite3_memory_highwater(1);
    const sqlite3_int64 before = sqlite3_memory_used();
    request();
    state.counters["peak"].value += static_cast<double>(sqlite3_memory_highwater(0) - before);
}

void RawSQLite(benchmark::State& state, const Workload& workload)
{
    static const std::vector<std::string> texts = StatementsOfARequest();
    const Connection connection = Opened(DatabaseFile::Instance().path, SQLITE_OPEN_READONLY);
    std::vector<Statement> statements;
    for (const std::string& text : texts) {
        sqlite3_stmt* statement = nullptr;
        Require(sqlite3_prepare_v2(connection.get(), text.c_str(), -1, &statement, nullptr) == SQLITE_OK,
                connection.get());
        statements.emplace_back(statement, &sqlite3_finalize);
    }
    const std::string user = workload.name;
    const auto read = [&] {
        std::vector<Columns> results;
        for (const Statement& statement : statements) {
            AppendRows(results.emplace_back(), statement.get(), user);
        }
        return results;
    };
    if (read().front().front().size() < PermissionsOf(workload).size()) {
        throw std::runtime_error("SQLite gives fewer rows than the user has permissions");
    }
    Measure(state, read);
}

void RequestPostgreSQL(benchmark::State& state, const Workload& workload)
{
    SECM_AccessControlInterface& accessControl = ConnectedManager(workload, std::getenv("SECM_BENCH_POSTGRESQL"));
    const std::string user = workload.name;
    const std::string address = workloadAddress;
    Measure(state, [&] { return accessControl.GetAccessControlFilter(user, address); });
}

const bool registered = [] {
    const bool hasPostgreSql = std::getenv("SECM_BENCH_POSTGRESQL") != nullptr;
    for (const Workload& workload : workloads) {
        Register("Request/SQLite", RequestSQLite, workload);
        Register("RawSQLite", RawSQLite, workload);
        if (hasPostgreSql) {
            Register("Request/PostgreSQL", RequestPostgreSQL, workload)->UseRealTime(); // the server's work counts
        }
    }
    return true;
}();

} // namespace

} // namespace secm::bench
