#include "bench/SecuritySql.h"

#include "bench/Workload.h"

#include <fstream>
#include <stdexcept>

namespace secm::bench {

namespace {

// The sample's CREATE TABLE statements.
std::string Tables()
{
    std::ifstream file(SECM_BENCH_TABLES);
    std::string tables;
    for (std::string line; std::getline(file, line) && !line.starts_with("INSERT");) {
        tables += line + '\n';
    }
    if (tables.find("CREATE TABLE") == std::string::npos) {
        throw std::runtime_error(SECM_BENCH_TABLES " holds no tables");
    }
    return tables;
}

} // namespace

std::string SecuritySql()
{
    std::string sql = Tables();
    std::size_t position = 0;
    for (const Workload& workload : workloads) {
        const std::string user = workload.name;
        sql += "INSERT INTO security_user VALUES ('" + user + "', 'group');\n";
        sql += "INSERT INTO security_attribute VALUES ('" + user + "', 'own', 'site0001');\n";
        const char* separator = "INSERT INTO security_permission VALUES\n";
        for (const PermissionBase& permission : PermissionsOf(workload)) {
            sql += separator;
            sql += '(' + std::to_string(++position) + ", 'user', '" + user + "', '" + permission.name() + "', " +
                   std::to_string(permission.value()) + ", '" + permission.resource() + "', 0)";
            separator = ",\n";
        }
        sql += ";\n";
    }
    return sql;
}

} // namespace secm::bench
