// A comparison as programs read it. The keys are documented and stay.
#include "tools/acfilter/render/ComparisonWriter.h"

#include "tools/acfilter/render/Json.h"

namespace secm::acfilter {

std::string SummaryJson(const Comparison& comparison)
{
    Json object = {{"repository", comparison.head.repository},
                   {"before", comparison.head.before},
                   {"after", comparison.head.after},
                   {"otherSecurityDatabase", comparison.head.hasOtherDatabase},
                   {"excluding", comparison.head.excluding}};
    for (const analysis::Change change :
         {analysis::Change::wider, analysis::Change::changed, analysis::Change::narrower, analysis::Change::same}) {
        object[NameOf(change)] = comparison.CountOf(change);
    }
    object["unknown"] = comparison.UnknownCount();
    object["firstUnknown"] = Json::array();
    for (const UnknownUser& user : comparison.FirstUnknown()) {
        object["firstUnknown"].push_back({{"user", user.name}, {"known", TextOrNull(user.known)}});
    }
    object["settings"] = Json::array();
    for (const analysis::SettingChange& setting : comparison.Settings()) {
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
    return JsonLine({{"user", user.user},
                     {"change", NameOf(user.change)},
                     {"because", TextOrNull(user.because)},
                     {"outcomeBefore", NameOf(user.before.outcome)},
                     {"outcomeAfter", NameOf(user.after.outcome)},
                     {"fields", std::move(fields)},
                     {"filterBefore", user.before.filter},
                     {"filterAfter", user.after.filter}});
}

} // namespace secm::acfilter
