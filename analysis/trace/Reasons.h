// Why an answer is what it is, in words.
#pragma once

#include "analysis/trace/Trace.h"

#include <string>

namespace secm::analysis {

/// Why the answer is the hide-all filter, or the default filter; empty: it is neither.
SECM_ANALYSIS_EXPORT std::string WhyNotComposed(const Trace& trace);

/// Why a condition adds nothing; empty: it adds its text.
SECM_ANALYSIS_EXPORT std::string WhyEmpty(const ConditionTrace& condition);

/// Whether a field that is not held outright leaves the user unrestricted all the same.
SECM_ANALYSIS_EXPORT bool RestrictsNothing(const FieldTrace& field);

} // namespace secm::analysis
