// Where the permissions of a trace come from: the rows of the security database that grant them.
#pragma once

#include "analysis/Export.h"
#include "analysis/trace/Trace.h"
#include "platform/security_manager/SECM_Listing.h"

#include <string>
#include <vector>

namespace secm::analysis {

/// The grants behind one field of a trace. Owns its texts.
struct FieldGrants {
    std::vector<SECM_Grant> grants; ///< That the field counts, to the user or to the user's group, by position.
    /// Why grants that look meant do not count, in words; only for a field that leaves the user no value.
    std::vector<std::string> nearMisses;
};

/// One for each of `trace.fields`, then one for each of `trace.later`; empty when the user is not known or without
/// details. Grants that the changes of the trace revoke are left out, and those that they add have no row. Reads the
/// database as it is now: a change since the trace was made may leave grants out. Throws what `security` throws.
SECM_ANALYSIS_EXPORT std::vector<FieldGrants> GrantsOf(const Trace& trace, SECM_ListingInterface& security);

} // namespace secm::analysis
