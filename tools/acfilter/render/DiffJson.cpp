// A diff as programs read it. The keys are documented and stay.
#include "tools/acfilter/render/DiffWriter.h"

#include "tools/acfilter/render/Changes.h"
#include "tools/acfilter/render/Json.h"

namespace secm::acfilter {

namespace {

// The user or the group whom the changes concern; null when it is the other, or when there are none.
Json GranteeOf(const analysis::WhatIf& tried, bool isGroup)
{
    return tried.grantee && tried.grantee->isGroup == isGroup ? Json(tried.grantee->name) : Json(nullptr);
}

Json RowChangeJson(const analysis::RowChange& rows)
{
    if (!rows.error.empty()) {
        return {{"error", rows.error}};
    }
    return {{"gained", rows.gained},
            {"lost", rows.lost},
            {"examples", {{"gained", rows.gainedKeys}, {"lost", rows.lostKeys}}}};
}

} // namespace

std::string SummaryJson(const DiffSummary& summary)
{
    Json object = {{"repository", summary.head.repository},
                   {"before", summary.head.before},
                   {"after", summary.head.after},
                   {"otherSecurityDatabase", summary.head.hasOtherDatabase},
                   {"excluding", summary.head.excluding},
                   {"whatIf", ChangesJson(summary.head.tried, false)},
                   {"forUser", GranteeOf(summary.head.tried, false)},
                   {"forGroup", GranteeOf(summary.head.tried, true)}};
    for (const analysis::Change change :
         {analysis::Change::wider, analysis::Change::changed, analysis::Change::narrower, analysis::Change::same}) {
        object[NameOf(change)] = summary.CountOf(change);
    }
    object["unknown"] = summary.unknownCount;
    object["firstUnknown"] = Json::array();
    for (const UnknownUser& user : summary.firstUnknown) {
        object["firstUnknown"].push_back({{"user", user.name}, {"known", TextOrNull(user.known)}});
    }
    object["settings"] = Json::array();
    for (const analysis::SettingChange& setting : summary.settings) {
        object["settings"].push_back({{"setting", setting.setting},
                                      {"change", NameOf(setting.change)},
                                      {"before", setting.before},
                                      {"after", setting.after}});
    }
    return JsonLine(object);
}

std::string UserChangeJson(const analysis::UserChange& user)
{
    Json fields = Json::array();
    for (const analysis::FieldChange& field : user.fields) {
        fields.push_back({{"field", field.field},
                          {"change", NameOf(field.change)},
                          {"because", TextOrNull(field.because)},
                          {"added", field.added},
                          {"removed", field.removed}});
    }
    Json object = {{"user", user.user},
                   {"change", NameOf(user.change)},
                   {"because", TextOrNull(user.because)},
                   {"outcomeBefore", NameOf(user.before.outcome)},
                   {"outcomeAfter", NameOf(user.after.outcome)},
                   {"fields", std::move(fields)},
                   {"filterBefore", user.before.filter},
                   {"filterAfter", user.after.filter}};
    if (user.rows) {
        object["rows"] = RowChangeJson(*user.rows);
    }
    return JsonLine(object);
}

} // namespace secm::acfilter
