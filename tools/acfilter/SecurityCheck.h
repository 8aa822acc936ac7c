// The rules on a configuration together with what a security manager grants.
#pragma once

#include "platform/security_manager/SECM_Listing.h"
#include "tools/acfilter/CheckedConfiguration.h"
#include "tools/acfilter/Finding.h"

/// Reads all grants and all attributes, each once, and keeps none of them. Throws what the listing throws.
void CheckSecurity(const std::vector<CheckedRepository>& repositories, SECM_ListingInterface& security,
                   std::vector<Finding>& findings);
