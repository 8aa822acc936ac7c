// The values function that a condition names.
#include "analysis/check/CheckRules.h"

#include "analysis/check/Spelling.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace secm::analysis {

namespace {

void UnknownFunction(const CheckedScope& scope, FindingSink& sink)
{
    const std::string& name = scope.condition.rule->function;
    if (!name.empty() && !scope.condition.rule->isMapped) {
        const std::vector<std::string> registered = scope.repository.manager->FunctionNames();
        sink.Error("AC006", scope.PlaceOf("values_function"), fmt::format("there is no values function '{}'", name),
                   fmt::format("users' values go into {} as they were granted, unmapped: they may match records that "
                               "nobody meant",
                               scope.condition.Key("condition")),
                   DidYouMean(name, registered, fmt::format("write {}", fmt::join(registered, " or "))));
    }
}

} // namespace

void CheckValuesFunction(const CheckedScope& scope, FindingSink& sink)
{
    UnknownFunction(scope, sink);
}

} // namespace secm::analysis
