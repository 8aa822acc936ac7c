#include "analysis/check/GrantRowCheck.h"

#include "analysis/check/GrantRow.h"

#include <fmt/core.h>

namespace secm::analysis {

void GrantRowCheck::Check(const SECM_GrantRow& row)
{
    if (!row.fault.empty()) {
        refused.Add(fmt::format("{}, granted to the {} '{}': {}", PositionOf(row.grant), row.granteeType,
                                row.grant.grantee, row.fault));
    } else if (row.grant.permission.value() == 0) {
        withoutBits.Add(
            fmt::format("{}, granted to the {} '{}'", PositionOf(row.grant), row.granteeType, row.grant.grantee));
    }
    if (row.isOddlyConditional) {
        oddlyConditional.Add(PositionOf(row.grant));
    }
}

void GrantRowCheck::Report(FindingSink& sink) const
{
    if (refused.count != 0) {
        sink.Error("AC059", SecurityPlace(), refused.InWords("row", " of security_permission cannot be used"),
                   "no filter is composed for users to whom such a row is granted: their requests fail",
                   "set permission_value to a whole number from 0 to 4294967295, and texts without NUL bytes, in these "
                   "rows; or delete them");
    }
    if (withoutBits.count != 0) {
        sink.Warn("AC087", SecurityPlace(),
                  fmt::format("permission_value is 0 in {}", withoutBits.InWords("row", " of security_permission")),
                  "the grant has no bit that a field could ask for, so it has no effect",
                  "set permission_value to the bits that are to be granted, such as the permission_value of the field; "
                  "or delete the row");
    }
    if (oddlyConditional.count != 0) {
        sink.Warn("AC093", SecurityPlace(),
                  fmt::format("is_conditional is neither 0 nor 1 in {}",
                              oddlyConditional.InWords("row", " of security_permission")),
                  "it counts as 1: a host that asks for unconditional permissions finds that the users lack them",
                  "set is_conditional to 0 or 1");
    }
}

} // namespace secm::analysis
