// The users of all workloads as SQL, for the database of a benchmark.
#pragma once

#include <string>

namespace secm::bench {

/// Creates the sample's tables with one user for each workload, of the workload's name. Runs on SQLite and on
/// PostgreSQL.
std::string SecuritySql();

} // namespace secm::bench
