#pragma once

#include "analysis/check/FindingSink.h"
#include "analysis/check/FirstAndCount.h"
#include "platform/security_manager/SECM_Listing.h"

namespace secm::analysis {

/// Rows of the grants whose numbers are wrong.
class GrantRowCheck {
public:
    void Check(const SECM_GrantRow& row);
    void Report(FindingSink& sink) const;

private:
    FirstAndCount refused;
    FirstAndCount withoutBits;
    FirstAndCount oddlyConditional;
};

} // namespace secm::analysis
