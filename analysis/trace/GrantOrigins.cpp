#include "analysis/trace/GrantOrigins.h"

#include "analysis/trace/WhatIfDecorators.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string_view>

namespace secm::analysis {
namespace {

constexpr std::size_t mostNamed = 3;

// The text without blanks, in lower case: what a person takes for the same name.
std::string Folded(std::string_view text)
{
    std::string folded;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isspace(byte) == 0) {
            folded += static_cast<char>(std::tolower(byte));
        }
    }
    return folded;
}

bool HasBits(const PermissionBase& permission, const FieldRule& rule)
{
    return (permission.value() & rule.permissionValue) == rule.permissionValue;
}

std::string GranteeOf(const SECM_Grant& grant)
{
    return grant.isToGroup ? fmt::format("the group '{}'", grant.grantee) : fmt::format("the user '{}'", grant.grantee);
}

std::string ResourceOf(const PermissionBase& permission)
{
    return permission.resource() != nullptr ? fmt::format("for '{}'", permission.resource()) : "outright";
}

bool HidesEverything(const FieldTrace& field)
{
    return !field.isHeld && field.resourcesAreTold && field.conditions.empty();
}

// Why a grant to the user or the user's group leaves the field without a value; empty when it has nothing to do with
// it.
std::string WhyNotCounted(const SECM_Grant& grant, const FieldRule& rule)
{
    const PermissionBase& permission = grant.permission;
    const std::string grants = fmt::format("the row at position {} grants", grant.position);
    if (permission.name() != rule.permissionName) {
        return Folded(permission.name()) == Folded(rule.permissionName)
                   ? fmt::format("{} '{}' to {}, and the field asks for '{}', with other blanks or letter case", grants,
                                 permission.name(), GranteeOf(grant), rule.permissionName)
                   : "";
    }
    if (!HasBits(permission, rule)) {
        return fmt::format("{} it to {} {} with the value {}, and the field asks for the bits of {}", grants,
                           GranteeOf(grant), ResourceOf(permission), permission.value(), rule.permissionValue);
    }
    if (permission.resource() != nullptr && *permission.resource() == '\0') {
        return fmt::format("{} it to {} for the empty resource, which is dropped; NULL would grant it outright", grants,
                           GranteeOf(grant));
    }
    return "";
}

// Who else has what the field asks for: a group that the user is not in, or a name that looks like the user's.
std::string WhoElse(const Trace& trace, const FieldRule& rule, SECM_ListingInterface& security)
{
    std::vector<std::string> names;
    std::size_t others = 0;
    security.ForEachGrantOf(rule.permissionName, [&](const SECM_Grant& grant) {
        const bool isOther = grant.grantee != (grant.isToGroup ? *trace.groupName : trace.request.userName);
        const bool looksMeant = grant.isToGroup || Folded(grant.grantee) == Folded(trace.request.userName);
        if (isOther && looksMeant && HasBits(grant.permission, rule)) {
            const std::string name = GranteeOf(grant);
            if (std::find(names.begin(), names.end(), name) == names.end()) {
                if (names.size() < mostNamed) {
                    names.push_back(name);
                } else {
                    ++others;
                }
            }
        }
    });
    if (names.empty()) {
        return "";
    }
    return fmt::format("it is granted to {}{}; the user is '{}', in {}", fmt::join(names, ", "),
                       others != 0 ? " and others" : "", trace.request.userName,
                       trace.groupName->empty() ? "no group" : fmt::format("the group '{}'", *trace.groupName));
}

} // namespace

std::vector<FieldGrants> GrantsOf(const Trace& trace, SECM_ListingInterface& security)
{
    if (!trace.groupName) {
        return {};
    }
    std::vector<SECM_Grant> granted;
    security.ForEachGrantTo(trace.request.userName, *trace.groupName, [&](const SECM_Grant& grant) {
        if (!IsRevoked(trace.tried, grant.permission)) {
            granted.push_back(grant);
        }
    });
    std::vector<FieldGrants> ofFields;
    const auto add = [&](const FieldTrace& field) {
        FieldGrants& found = ofFields.emplace_back();
        for (const SECM_Grant& grant : granted) {
            const PermissionBase& permission = grant.permission;
            const bool isOutright = permission.resource() == nullptr;
            if (permission.name() == field.rule->permissionName && isOutright == field.isHeld &&
                (isOutright || HasBits(permission, *field.rule))) {
                found.grants.push_back(grant);
            }
            if (HidesEverything(field)) {
                if (std::string why = WhyNotCounted(grant, *field.rule); !why.empty()) {
                    found.nearMisses.push_back(std::move(why));
                }
            }
        }
        if (HidesEverything(field)) {
            if (std::string who = WhoElse(trace, *field.rule, security); !who.empty()) {
                found.nearMisses.push_back(std::move(who));
            }
        }
    };
    std::for_each(trace.fields.begin(), trace.fields.end(), add);
    std::for_each(trace.later.begin(), trace.later.end(), add);
    return ofFields;
}

} // namespace secm::analysis
