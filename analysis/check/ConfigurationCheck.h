// The rules on a configuration alone.
#pragma once

#include "analysis/check/CheckedConfiguration.h"
#include "analysis/check/Finding.h"

namespace secm::analysis {

/// All of them, on these repositories and on what belongs to no repository.
void CheckConfiguration(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings);

// Their parts, a file each: a function a rule, in the order of the codes.
void CheckSettings(const CheckedRepository& repository, Report& report);
void CheckDefinition(const CheckedDefinition& definition, Report& report);
void CheckTemplate(const CheckedScope& scope, Report& report);
void CheckLookups(const CheckedScope& scope, Report& report);
void CheckKeys(const CheckedRepository& repository, Report& report);
void CheckSharedKeys(Report& report);

} // namespace secm::analysis
