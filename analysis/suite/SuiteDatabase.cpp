#include "analysis/suite/SuiteDatabase.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

namespace secm::analysis {

namespace {

constexpr const char* securityTables = R"(
PRAGMA journal_mode = OFF;
PRAGMA synchronous = OFF;
BEGIN;
CREATE TABLE security_user (
    user_name   VARCHAR(255) NOT NULL PRIMARY KEY,
    group_name  VARCHAR(255) NOT NULL DEFAULT '');
CREATE TABLE security_attribute (
    user_name        VARCHAR(255) NOT NULL REFERENCES security_user,
    attribute_name   VARCHAR(255) NOT NULL,
    attribute_value  TEXT NOT NULL,
    PRIMARY KEY (user_name, attribute_name));
CREATE TABLE security_permission (
    position          INTEGER NOT NULL PRIMARY KEY,
    grantee_type      VARCHAR(5) NOT NULL CHECK (grantee_type IN ('user', 'group')),
    grantee           VARCHAR(255) NOT NULL,
    permission_name   VARCHAR(255) NOT NULL,
    permission_value  BIGINT NOT NULL,
    resource          TEXT,
    is_conditional    INTEGER NOT NULL DEFAULT 0);
CREATE INDEX security_permission_grantee ON security_permission (grantee_type, grantee, position);
)";

class DatabaseWriter {
public:
    explicit DatabaseWriter(const std::string& file)
    {
        sqlite3* opened = nullptr;
        const int result = sqlite3_open(file.c_str(), &opened);
        handle.reset(opened);
        Require(result == SQLITE_OK);
        Run(securityTables);
    }

    void Run(const char* statements)
    {
        Require(sqlite3_exec(handle.get(), statements, nullptr, nullptr, nullptr) == SQLITE_OK);
    }

    // No value is NULL.
    void Insert(const char* statement, std::initializer_list<std::optional<std::string_view>> values)
    {
        sqlite3_stmt* prepared = nullptr;
        Require(sqlite3_prepare_v2(handle.get(), statement, -1, &prepared, nullptr) == SQLITE_OK);
        const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> row(prepared, &sqlite3_finalize);
        int index = 0;
        for (const auto& value : values) {
            ++index;
            if (value) {
                sqlite3_bind_text(prepared, index, value->data(), static_cast<int>(value->size()), SQLITE_TRANSIENT);
            }
        }
        Require(sqlite3_step(prepared) == SQLITE_DONE);
    }

    void InsertGrants(const char* granteeType, const std::string& grantee, const std::vector<PermissionBase>& grants)
    {
        for (const PermissionBase& grant : grants) {
            const std::string value = std::to_string(grant.value());
            const char* resource = grant.resource();
            Insert(
                "INSERT INTO security_permission (grantee_type, grantee, permission_name, permission_value, resource) "
                "VALUES (?, ?, ?, CAST(? AS INTEGER), ?)",
                {granteeType, grantee, grant.name(), value,
                 resource != nullptr ? std::optional<std::string_view>(resource) : std::nullopt});
        }
    }

private:
    struct CloseHandle {
        void operator()(sqlite3* opened) const { sqlite3_close(opened); }
    };

    void Require(bool holds) const
    {
        if (!holds) {
            throw std::runtime_error(fmt::format("the suite's users cannot be stored: {}",
                                                 handle ? sqlite3_errmsg(handle.get()) : "out of memory"));
        }
    }

    std::unique_ptr<sqlite3, CloseHandle> handle;
};

} // namespace

SuiteDatabase::SuiteDatabase(const SuiteUsers& users)
{
    std::string name = (std::filesystem::temp_directory_path() / "acfilter-suite-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error(
            fmt::format("{}: cannot be made: {}; set TMPDIR to a folder with room", name, std::strerror(errno)));
    }
    folder = name;
    try {
        Fill(users);
    } catch (...) {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
        throw;
    }
}

SuiteDatabase::~SuiteDatabase()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

std::string SuiteDatabase::ConnectionText() const
{
    return fmt::format("sqlite3://db=\"{}\"", (folder / "security.db").string());
}

void SuiteDatabase::Fill(const SuiteUsers& users) const
{
    DatabaseWriter writer((folder / "security.db").string());
    for (const auto& [name, grants] : users.groups) {
        writer.InsertGrants("group", name, grants);
    }
    for (const auto& [name, user] : users.users) {
        writer.Insert("INSERT INTO security_user VALUES (?, ?)", {name, user.group});
        for (const auto& [attribute, value] : user.attributes) {
            writer.Insert("INSERT INTO security_attribute VALUES (?, ?, ?)", {name, attribute, value});
        }
        writer.InsertGrants("user", name, user.grants);
    }
    writer.Run("COMMIT");
}

} // namespace secm::analysis
