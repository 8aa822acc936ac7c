// Collects the findings of the rules.
#pragma once

#include "analysis/check/Finding.h"

#include <string>
#include <utility>
#include <vector>

namespace secm::analysis {

/// For one repository or, with an empty name, for what several share. The list must outlive the sink.
class FindingSink {
public:
    FindingSink(std::vector<Finding>& into, std::string ofRepository)
        : findings(into), repository(std::move(ofRepository))
    {
    }

    void Error(const char* code, const CFG_Place& place, std::string problem, std::string effect, std::string remedy)
    {
        findings.push_back(
            {place, code, Severity::error, repository, std::move(problem), std::move(effect), std::move(remedy)});
    }

    void Warn(const char* code, const CFG_Place& place, std::string problem, std::string effect, std::string remedy)
    {
        findings.push_back(
            {place, code, Severity::warning, repository, std::move(problem), std::move(effect), std::move(remedy)});
    }

private:
    std::vector<Finding>& findings;
    std::string repository;
};

} // namespace secm::analysis
