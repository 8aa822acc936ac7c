// The rules on a configuration together with what a security manager grants.
#pragma once

#include "analysis/check/CheckedConfiguration.h"
#include "analysis/check/Finding.h"
#include "platform/security_manager/SECM_Listing.h"

namespace secm::analysis {

/// Reads all grants and all attributes, each once, and keeps none of them. Throws what the listing throws.
void CheckSecurity(const std::vector<CheckedRepository>& repositories, SECM_ListingInterface& security,
                   std::vector<Finding>& findings);

} // namespace secm::analysis
