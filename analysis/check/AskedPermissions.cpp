#include "analysis/check/AskedPermissions.h"

#include <algorithm>

namespace secm::analysis {

namespace {

constexpr std::size_t mostValues = 64;

AskedPermissions::ValueSet Bit(std::size_t index)
{
    return AskedPermissions::ValueSet{1} << std::min(index, mostValues - 1);
}

} // namespace

AskedPermissions::AskedPermissions(const std::vector<CheckedRepository>& repositories)
{
    for (const CheckedRepository& repository : repositories) {
        for (const auto& field : repository.Rules().fields) {
            const auto [found, isNew] = numbers.try_emplace(field->permissionName, permissions.size());
            if (isNew) {
                permissions.push_back({field->permissionName, {}, true});
            }
            Permission& permission = permissions[found->second];
            if (std::find(permission.values.begin(), permission.values.end(), field->permissionValue) ==
                permission.values.end()) {
                permission.values.push_back(field->permissionValue);
            }
            permission.isMapped =
                permission.isMapped && std::all_of(field->conditions.begin(), field->conditions.end(),
                                                   [](const ConditionRule& condition) { return condition.isMapped; });
        }
    }
}

std::optional<std::size_t> AskedPermissions::Find(const std::string& name) const
{
    const auto found = numbers.find(name);
    return found != numbers.end() ? std::optional(found->second) : std::nullopt;
}

AskedPermissions::ValueSet AskedPermissions::Only(std::size_t number, std::uint32_t value) const
{
    const std::vector<std::uint32_t>& values = At(number).values;
    return Bit(static_cast<std::size_t>(std::find(values.begin(), values.end(), value) - values.begin()));
}

AskedPermissions::ValueSet AskedPermissions::HeldBy(std::size_t number, std::uint32_t bits) const
{
    ValueSet held = 0;
    const std::vector<std::uint32_t>& values = At(number).values;
    for (std::size_t index = 0; index < values.size(); ++index) {
        if ((bits & values[index]) == values[index]) {
            held |= Bit(index);
        }
    }
    return held;
}

} // namespace secm::analysis
