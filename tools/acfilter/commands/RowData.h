// Opens the rows that --data names.
#pragma once

#include "analysis/data/DataSource.h"
#include "tools/acfilter/commands/CommonOptions.h"

#include <cstdint>
#include <memory>
#include <string>

namespace secm::acfilter {

/// Throws UsageError when the options do not fit each other.
void RequireDataUse(const DataOptions& options);

/// Null when no rows are named. Throws std::runtime_error when they cannot be read, or when --record names none of
/// them.
std::unique_ptr<analysis::DataSource> OpenRows(const DataOptions& options, unsigned timeoutSeconds);

/// How many rows there are. Throws std::runtime_error when they cannot be read.
std::uint64_t CountAll(analysis::DataSource& data);

/// Whether one row can be told from the others.
bool HasKeys(const DataOptions& options);

/// The rows in words, without secrets; empty when none are named.
std::string ShownRows(const DataOptions& options);

} // namespace secm::acfilter
