#include "analysis/check/OutcomeSummary.h"

#include "analysis/check/GrantRow.h"
#include "analysis/trace/Reasons.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>

namespace secm::analysis {

namespace {

std::string WhyUnrestricted(const Trace& trace)
{
    std::string reason;
    for (const FieldTrace& field : trace.fields) {
        if (RestrictsNothing(field)) {
            reason +=
                (reason.empty() ? "" : "; ") + ("the conditions of the field '" + field.rule->name + "' add nothing");
        }
    }
    if (!reason.empty()) {
        return reason;
    }
    return trace.fields.empty() ? "the repository has no field in force"
                                : "every field's permission is granted without a resource";
}

} // namespace

void OutcomeSummary::Add(const Trace& trace)
{
    const Outcome outcome = trace.answer.outcome;
    if (outcome != Outcome::unrestricted && outcome != Outcome::hideAll) {
        return;
    }
    const std::string reason = outcome == Outcome::hideAll ? WhyNotComposed(trace) : WhyUnrestricted(trace);
    UsersOfOutcome& alike = users.try_emplace({outcome, reason}, UsersOfOutcome{outcome, reason, 0, {}}).first->second;
    ++alike.count;
    if (alike.first.size() < mostNames) {
        alike.first.push_back(trace.request.userName);
    }
}

void OutcomeSummary::AddFailure(const std::string& userName, const std::string& reason)
{
    if (failures++ == 0) {
        firstFailure = fmt::format("'{}': {}", userName, reason);
    }
}

std::optional<Finding> OutcomeSummary::Failures(const std::string& repository) const
{
    if (failures == 0) {
        return std::nullopt;
    }
    return Finding{SecurityPlace(),
                   "AC094",
                   Severity::error,
                   repository,
                   fmt::format("no filter can be composed for {} user{}; the first is {}", failures,
                               failures == 1 ? "" : "s", firstFailure),
                   "hosts get an error in place of the filter of these users",
                   "correct what this error names, and check again"};
}

std::vector<UsersOfOutcome> OutcomeSummary::Users() const
{
    std::vector<UsersOfOutcome> all;
    std::transform(users.begin(), users.end(), std::back_inserter(all), [](const auto& alike) { return alike.second; });
    return all;
}

} // namespace secm::analysis
