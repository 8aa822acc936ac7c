// How findings name rows of the security database.
#pragma once

#include "platform/configuration/CFG_Listing.h"
#include "platform/security_manager/SECM_Listing.h"

#include <fmt/core.h>

#include <string>

namespace secm::analysis {

/// Of a finding that concerns the security database and no single key of the configuration.
inline CFG_Place SecurityPlace()
{
    return {"", 1, 1};
}

inline std::string PositionOf(const SECM_Grant& grant)
{
    return fmt::format("that at position {}", grant.position);
}

/// Null when the grant is outright.
inline const char* ResourceOf(const SECM_Grant& grant)
{
    return grant.permission.resource();
}

} // namespace secm::analysis
