#include "analysis/check/AttributeNameCheck.h"

#include "analysis/check/GrantRow.h"
#include "analysis/check/MisspeltName.h"

#include <fmt/core.h>

#include <algorithm>

namespace secm::analysis {

void AttributeNameCheck::Check(const SECM_Attribute& attribute)
{
    if (attribute.userName != user) {
        EndUser();
        user = attribute.userName;
    }
    names.push_back(attribute.name);
}

const std::string& AttributeNameCheck::Meant(const std::string& name)
{
    const auto [found, isNew] = meant.try_emplace(name);
    if (isNew && asked.count(name) == 0) {
        const auto near = std::find_if(asked.begin(), asked.end(),
                                       [&](const std::string& each) { return IsMisspeltName(name, each); });
        found->second = near != asked.end() ? *near : "";
    }
    return found->second;
}

void AttributeNameCheck::EndUser()
{
    for (const std::string& name : names) {
        const std::string& right = Meant(name);
        if (!right.empty() && std::find(names.begin(), names.end(), right) == names.end()) {
            misspelt.Add(name, fmt::format("that of the user '{}'", user));
        }
    }
    names.clear();
}

void AttributeNameCheck::Report(FindingSink& sink)
{
    EndUser();
    for (const auto& [name, rows] : misspelt.names) {
        const std::string& right = Meant(name);
        sink.Warn(
            "AC090", SecurityPlace(),
            fmt::format("the attribute '{}', which nothing asks for, is nearly '{}' in {}", name, right,
                        rows.InWords("row", " of security_attribute")),
            fmt::format("these users have no attribute '{}': what %my% or a token is to be replaced with is "
                        "missing",
                        right),
            fmt::format("set attribute_name to '{}' in security_attribute where attribute_name = '{}'; attributes "
                        "have no $ there",
                        right, name));
    }
}

} // namespace secm::analysis
