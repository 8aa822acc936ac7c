#pragma once

#include "analysis/check/FirstAndCount.h"

#include <cstddef>
#include <map>
#include <string>

namespace secm::analysis {

/// Counts rows with the same problem for each of the first names that have it, and the rows of all other names
/// together, so that neither memory nor the number of findings grows with the database.
struct CountByName {
    static constexpr std::size_t mostNames = 20;

    void Add(const std::string& name, const std::string& row)
    {
        if (const auto found = names.find(name); found != names.end()) {
            found->second.Add(row);
        } else if (names.size() < mostNames) {
            names[name].Add(row);
        } else {
            others.Add(row);
        }
    }

    std::map<std::string, FirstAndCount> names;
    FirstAndCount others;
};

} // namespace secm::analysis
