#include "analysis/check/ConfigurationCheck.h"

namespace secm::analysis {

void CheckConfiguration(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings)
{
    for (const CheckedRepository& repository : repositories) {
        Report report(findings, repository.name);
        CheckSettings(repository, report);
        for (const CheckedDefinition& definition : repository.definitions) {
            CheckDefinition(definition, report);
            for (const CheckedCondition& condition : definition.conditions) {
                CheckTemplate({repository, definition, condition}, report);
                CheckLookups({repository, definition, condition}, report);
            }
        }
        CheckKeys(repository, report);
    }
    Report shared(findings, "");
    CheckSharedKeys(shared);
}

} // namespace secm::analysis
