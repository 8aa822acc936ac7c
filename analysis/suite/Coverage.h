// What the tests of a suite have reached in the rules of a repository, and what none of them has.
#pragma once

#include "analysis/Export.h"
#include "analysis/trace/Trace.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace secm::analysis {

/// Counts only what can happen: a template without a token is never filled by an attribute. One thread at a time.
class Coverage {
public:
    /// Reads the code tables of the configuration that is in force for the calling thread.
    SECM_ANALYSIS_EXPORT explicit Coverage(const RepositoryRules& rules);

    SECM_ANALYSIS_EXPORT void Add(const Trace& trace);

    /// What can be reached, how much of it was, and in words what was not, in the order of the rules.
    std::size_t All() const { return items.size(); }
    std::size_t Reached() const { return items.size() - missing.size(); }
    SECM_ANALYSIS_EXPORT std::vector<std::string> Missing() const;

    /// Rounded down, so that 100 means everything; 100 as well when there is nothing to reach.
    SECM_ANALYSIS_EXPORT unsigned Percent() const;

private:
    void AddField(const FieldTrace& field);
    void AddCondition(const FieldTrace& field, const ConditionTrace& condition);
    void Expect(std::string item);
    void Reach(const std::string& item) { missing.erase(item); }

    std::vector<std::string> items;
    std::set<std::string> missing;
};

} // namespace secm::analysis
