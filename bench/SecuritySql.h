// The users of all workloads as SQL, for a database to be measured on.
#pragma once

#include <string>

/// The tables of the sample, and in them one user for each workload, of its name. Runs on SQLite and on PostgreSQL.
std::string SecuritySql();
