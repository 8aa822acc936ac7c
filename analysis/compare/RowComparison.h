// Settles on rows what the comparison of two answers cannot: does the user see more or fewer of them?
#pragma once

#include "analysis/Export.h"
#include "analysis/compare/TraceComparison.h"

#include <cstddef>

namespace secm::analysis {

class DataSource;

/// Fills `user.rows` when the two filters differ, with at most `examples` keys of each kind (0 where no key column is
/// named), and corrects `user.change`:
/// - rows gained and none lost: wider; lost and none gained: narrower; both: changed;
/// - no row differs: the change stays, because rows that are added later may differ.
/// A change that is wider by its values, of which rows are only lost, becomes changed, and so the other way round. When
/// the engine refuses a filter, the change stays. Throws DataError.
SECM_ANALYSIS_EXPORT void CompareRows(UserChange& user, DataSource& data, std::size_t examples);

} // namespace secm::analysis
