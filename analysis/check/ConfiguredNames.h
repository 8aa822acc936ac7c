#pragma once

#include "analysis/check/CheckedConfiguration.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace secm::analysis {

/// The names of tables in the configuration, such as codes and sites. Reads each list once.
class ConfiguredNames {
public:
    /// Sorted.
    const std::vector<std::string>& Under(const std::string& path)
    {
        const auto [found, isNew] = namesByPath.try_emplace(path);
        if (isNew) {
            found->second = TableNames(path);
            std::sort(found->second.begin(), found->second.end());
        }
        return found->second;
    }

private:
    std::map<std::string, std::vector<std::string>> namesByPath; // never moves its values
};

} // namespace secm::analysis
