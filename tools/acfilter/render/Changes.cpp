#include "tools/acfilter/render/Changes.h"

#include "tools/acfilter/render/Printable.h"
#include "tools/acfilter/render/TextLayout.h"

#include <fmt/format.h>

namespace secm::acfilter {
namespace {

std::string CountOf(const analysis::WhatIf::Revocation& revocation)
{
    return revocation.revoked == 0 ? " (nor has it today: nothing changes by this)"
                                   : fmt::format(" ({} of today's grants)", revocation.revoked);
}

} // namespace

std::vector<std::string> ChangesInWords(const analysis::WhatIf& tried, bool withCounts)
{
    const bool isGroup = tried.grantee && tried.grantee->isGroup;
    const std::string who =
        tried.grantee ? (isGroup ? "the group " : "the user ") + Quoted(tried.grantee->name) : std::string("the user");
    std::vector<std::string> changes;
    for (const auto& [name, value] : tried.attributes) {
        changes.push_back(fmt::format("{} had the attribute {} = {}", isGroup ? "each user of " + who : who,
                                      Printable(name), Quoted(value)));
    }
    for (const auto& revocation : tried.revocations) {
        changes.push_back(
            fmt::format("{} had not {}{}", who, Quoted(revocation.permission), withCounts ? CountOf(revocation) : ""));
    }
    for (const PermissionBase& grant : tried.grants) {
        changes.push_back(
            fmt::format("{} had {}, value {}, {}", who, Quoted(grant.name()), grant.value(),
                        grant.resource() != nullptr ? "for the resource " + Quoted(grant.resource()) : "outright"));
    }
    return changes;
}

Json ChangesJson(const analysis::WhatIf& tried, bool withCounts)
{
    Json changes = Json::array();
    for (const auto& [name, value] : tried.attributes) {
        changes.push_back({{"attribute", name}, {"value", value}});
    }
    for (const auto& revocation : tried.revocations) {
        Json& change = changes.emplace_back(Json{{"revoke", revocation.permission}});
        if (withCounts) {
            change["revoked"] = revocation.revoked;
        }
    }
    for (const PermissionBase& grant : tried.grants) {
        changes.push_back({{"grant", grant.name()},
                           {"value", grant.value()},
                           {"resource", grant.resource() != nullptr ? Json(grant.resource()) : Json(nullptr)}});
    }
    return changes;
}

} // namespace secm::acfilter
