// Who sees everything and who sees nothing: no mistake by itself, but the first thing to look at after a change.
#pragma once

#include "analysis/Export.h"
#include "analysis/check/Finding.h"
#include "analysis/trace/Trace.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace secm::analysis {

/// Users of one repository whose answers have the same outcome for the same reason.
struct SECM_ANALYSIS_EXPORT UsersOfOutcome {
    Outcome outcome = Outcome::unrestricted; ///< Or hideAll.
    std::string reason;                      ///< In words: which fields decide, and why.
    unsigned long long count = 0;
    std::vector<std::string> first; ///< The names of the first users, at most OutcomeSummary::mostNames.
};

/// Counts the users whom one repository shows everything or nothing. Keeps neither traces nor more than the first
/// names. One thread at a time.
class SECM_ANALYSIS_EXPORT OutcomeSummary {
public:
    static constexpr std::size_t mostNames = 5;

    /// `trace` is the module's answer to one user.
    void Add(const Trace& trace);

    /// The request of `userName` failed for this reason.
    void AddFailure(const std::string& userName, const std::string& reason);
    unsigned long long FailureCount() const { return failures; }

    /// What is wrong when requests failed: AC094, with the count and the first. No value: none failed.
    std::optional<Finding> Failures(const std::string& repository) const;

    /// Users without restriction first, then those with the hide-all filter; among them by the reason.
    std::vector<UsersOfOutcome> Users() const;

private:
    std::map<std::pair<Outcome, std::string>, UsersOfOutcome> users;
    unsigned long long failures = 0;
    std::string firstFailure;
};

} // namespace secm::analysis
