#include "analysis/check/ChangeCheck.h"

#include "analysis/check/Spelling.h"

#include <fmt/format.h>

#include <algorithm>

namespace secm::analysis {
namespace {

std::string WithoutFrame(const std::string& token)
{
    return token.size() > 2 && token.front() == '$' && token.back() == '$' ? token.substr(1, token.size() - 2) : "";
}

std::vector<std::string> AttributesIn(const RepositoryRules& rules)
{
    std::vector<std::string> names;
    for (const auto& field : rules.fields) {
        names.push_back(WithoutFrame(field->myField));
        for (const ConditionRule& condition : field->conditions) {
            std::transform(condition.replaceTokens.begin(), condition.replaceTokens.end(), std::back_inserter(names),
                           WithoutFrame);
        }
    }
    std::erase(names, "");
    return names;
}

bool Holds(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

std::vector<std::string> ChangesWithoutEffect(const RepositoryRules& rules, const WhatIf& tried)
{
    std::vector<std::string> permissions;
    for (const auto& field : rules.fields) {
        permissions.push_back(field->permissionName);
    }
    const std::vector<std::string> attributes = AttributesIn(rules);
    std::vector<std::string> without;
    const auto require = [&](const char* what, const std::string& name, const std::vector<std::string>& known) {
        if (!Holds(known, name)) {
            const std::string nearest = Nearest(name, known);
            without.push_back(fmt::format("no field of the repository '{}' asks for the {} '{}', so this change has no "
                                          "effect{}",
                                          rules.repository, what, name,
                                          nearest.empty() ? "" : fmt::format("; did you mean '{}'?", nearest)));
        }
    };
    for (const auto& [name, value] : tried.attributes) {
        require("attribute", name, attributes);
    }
    for (const PermissionBase& grant : tried.grants) {
        require("permission", grant.name(), permissions);
    }
    for (const WhatIf::Revocation& revocation : tried.revocations) {
        const bool namesField = std::any_of(permissions.begin(), permissions.end(), [&](const std::string& name) {
            return revocation.permission == name || revocation.permission.starts_with(name + ":");
        });
        if (!namesField) {
            require("permission", revocation.permission.substr(0, revocation.permission.find(':')), permissions);
        }
    }
    return without;
}

} // namespace secm::analysis
