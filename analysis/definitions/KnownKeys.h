// The keys that the module reads.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace secm::analysis {

inline constexpr std::array<std::string_view, 8> settingKeys = {
    "hide_all_filter",           "default_filter",           "filter_delimiter",
    "single_equal_operator",     "multiple_equal_operator",  "value_multiplicity_delimiter",
    "value_multiplicity_prefix", "value_multiplicity_suffix"};
inline constexpr std::array<std::string_view, 4> definitionKeys = {"permission_name", "permission_value", "my_field",
                                                                   "conditions_delimiter"};
/// Each is followed by N, the number of the condition that it belongs to.
inline constexpr std::array<std::string_view, 5> numberedKeys = {"condition", "mandatory_fields", "replace_fields",
                                                                 "values_function", "values_function_config_string"};

template <class Names>
bool IsOneOf(const Names& names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// N of a key that is `base` followed by N, without leading zeros; 0 when the key is not of that form.
inline unsigned NumberOf(std::string_view key, std::string_view base)
{
    constexpr std::size_t mostDigits = 9; // far more than anybody has conditions, and no overflow
    const std::string_view digits = key.starts_with(base) ? key.substr(base.size()) : "";
    const bool isNumber = !digits.empty() && digits.size() <= mostDigits && digits.front() != '0' &&
                          digits.find_first_not_of("0123456789") == std::string_view::npos;
    return isNumber ? static_cast<unsigned>(std::stoul(std::string(digits))) : 0;
}

} // namespace secm::analysis
