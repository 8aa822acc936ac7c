// The reasons of an answer, in words. Any thread may call the functions.
#pragma once

#include "analysis/trace/Trace.h"

#include <string>

namespace secm::analysis {

/// Why the answer is the hide-all filter or the default filter; empty when it is neither.
SECM_ANALYSIS_EXPORT std::string WhyNotComposed(const Trace& trace);

/// Why the condition adds nothing; empty when it adds its text.
SECM_ANALYSIS_EXPORT std::string WhyEmpty(const ConditionTrace& condition);

/// Whether the field adds no clause although it has values: then it does not restrict the user, who does not hold its
/// permission outright.
SECM_ANALYSIS_EXPORT bool RestrictsNothing(const FieldTrace& field);

} // namespace secm::analysis
