#pragma once

#include "analysis/check/CheckedConfiguration.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace secm::analysis {

/// The permissions that definitions in force ask for, by number, with the values that are asked for.
class AskedPermissions {
public:
    /// A bit for each of the values of a permission. Values behind the 64th are not told apart from it.
    using ValueSet = std::uint64_t;

    struct Permission {
        std::string name;
        std::vector<std::uint32_t> values; ///< Each once.
        bool isMapped = true;              ///< Every condition maps the resources by a values function.
    };

    /// Copies what it needs.
    explicit AskedPermissions(const std::vector<CheckedRepository>& repositories);

    std::optional<std::size_t> Find(const std::string& name) const;
    const Permission& At(std::size_t number) const { return permissions.at(number); }
    std::size_t Count() const { return permissions.size(); }

    /// The set with the value alone.
    ValueSet Only(std::size_t number, std::uint32_t value) const;
    /// The values whose bits are all in `bits`.
    ValueSet HeldBy(std::size_t number, std::uint32_t bits) const;

private:
    std::vector<Permission> permissions;
    std::unordered_map<std::string, std::size_t> numbers;
};

} // namespace secm::analysis
