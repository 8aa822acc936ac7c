// The risks that the security manager finds in its own connection.
#include "analysis/check/CheckRules.h"

#include "platform/security_manager/SECM_Listing.h"

namespace secm::analysis {

void CheckConnectionRisks(SECM_ListingInterface& security, std::vector<Finding>& findings)
{
    FindingSink sink(findings, "");
    security.ForEachRisk([&](const SECM_Risk& risk) {
        sink.Warn("AC051", {"", 1, 1}, risk.problem, risk.effect, risk.remedy);
    });
}

} // namespace secm::analysis
