// The keys that the module reads.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace secm::analysis {

inline const std::vector<std::string> settingKeys = {"hide_all_filter",           "default_filter",
                                                     "filter_delimiter",          "single_equal_operator",
                                                     "multiple_equal_operator",   "value_multiplicity_delimiter",
                                                     "value_multiplicity_prefix", "value_multiplicity_suffix"};
inline const std::vector<std::string> definitionKeys = {"permission_name", "permission_value", "my_field",
                                                        "conditions_delimiter"};
/// Of condition N, followed by N.
inline const std::vector<std::string> numberedKeys = {"condition", "mandatory_fields", "replace_fields",
                                                      "values_function", "values_function_config_string"};

inline bool IsOneOf(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// N of a key that is `base` followed by N, without leading zeros; 0: it is not.
inline unsigned NumberOf(const std::string& key, const std::string& base)
{
    constexpr std::size_t mostDigits = 9; // far more than anybody has conditions, and no overflow
    const std::string digits = key.starts_with(base) ? key.substr(base.size()) : "";
    const bool isNumber = !digits.empty() && digits.size() <= mostDigits && digits.front() != '0' &&
                          digits.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? static_cast<unsigned>(std::stoul(digits)) : 0;
}

} // namespace secm::analysis
