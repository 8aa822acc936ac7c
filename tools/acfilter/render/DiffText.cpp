// A diff as people read it.
#include "tools/acfilter/render/DiffWriter.h"

#include "tools/acfilter/render/Changes.h"
#include "tools/acfilter/render/Printable.h"
#include "tools/acfilter/render/TextLayout.h"

#include <fmt/format.h>

namespace secm::acfilter {

namespace {

std::string Listed(const char* sign, const std::vector<std::string>& values, bool isFull)
{
    if (values.empty()) {
        return {};
    }
    return sign + ShortList(
                      values.size(), [&](std::size_t n) { return Quoted(values[n]); }, isFull);
}

std::string FieldText(const analysis::FieldChange& field, bool isFull)
{
    std::string text = NameOf(field.change);
    text += field.because.empty() ? "" : ", " + field.because;
    text += Listed(", added ", field.added, isFull) + Listed(", removed ", field.removed, isFull);
    return LabelledLine(3, Printable(field.field), text);
}

std::string FilterText(const std::string& filter, bool isFull)
{
    return filter.empty() ? NoRestriction() : ShortText(filter, isFull);
}

std::string BeforeAndNow(const std::string& before, const std::string& now, bool isFull)
{
    return LabelledLine(3, "before", FilterText(before, isFull)) + LabelledLine(3, "now", FilterText(now, isFull));
}

std::string CountAndExample(const char* verb, std::uint64_t count, const std::vector<std::string>& keys)
{
    return fmt::format("{} {}{}", verb, count, keys.empty() ? "" : fmt::format(" (such as {})", Quoted(keys.front())));
}

std::string RowChangeText(const analysis::RowChange& rows)
{
    if (!rows.error.empty()) {
        return "not compared, because the engine refuses a filter: " + Printable(rows.error);
    }
    return rows.gained == 0 && rows.lost == 0 ? "the same today; others may be added"
                                              : CountAndExample("gained", rows.gained, rows.gainedKeys) + ", " +
                                                    CountAndExample("lost", rows.lost, rows.lostKeys);
}

std::string UnknownText(const DiffSummary& summary)
{
    std::string names;
    for (const UnknownUser& user : summary.firstUnknown) {
        names += (names.empty() ? "" : ", ") + Quoted(user.name) +
                 (user.known.empty() ? "" : fmt::format(" ({} is known)", Quoted(user.known)));
    }
    if (names.empty()) {
        return names;
    }
    const bool areMore = summary.unknownCount > summary.firstUnknown.size();
    return LabelledLine(
        0, "Unknown",
        fmt::format("{} of them, on both sides: {}{}", summary.unknownCount, names, areMore ? ", ..." : ""));
}

} // namespace

std::string SummaryText(const DiffSummary& summary)
{
    const DiffHead& head = summary.head;
    std::string kinds;
    for (const analysis::Change change : shownChanges) {
        kinds += fmt::format("{} {}, ", summary.CountOf(change), NameOf(change));
    }
    std::string excluding;
    for (const std::string& field : head.excluding) {
        excluding += (excluding.empty() ? "" : ", ") + Printable(field);
    }
    std::string changes;
    for (const std::string& change : ChangesInWords(head.tried, false)) {
        changes += LabelledLine(0, changes.empty() ? "What if" : "", change);
    }
    std::string settings;
    for (const analysis::SettingChange& setting : summary.settings) {
        settings += LabelledLine(0, "Setting",
                                 fmt::format("{}: {} for {}", setting.setting, NameOf(setting.change), setting.users)) +
                    BeforeAndNow(setting.before, setting.after, true);
    }
    return LabelledLine(0, "Repository", Quoted(head.repository)) + LabelledLine(0, "Before", Printable(head.before)) +
           LabelledLine(0, "After",
                        Printable(head.after) + (head.hasOtherDatabase ? ", with another security database" : "")) +
           changes + (head.data.empty() ? "" : LabelledLine(0, "Rows", Printable(head.data))) +
           LabelledLine(
               0, "Users",
               fmt::format("{}: {}{} the same", summary.CountOfAll(), kinds, summary.CountOf(analysis::Change::same))) +
           (summary.refusedCount == 0 ? ""
                                      : LabelledLine(0, "Refused",
                                                     fmt::format("filters of {} of them, by the engine; see their rows",
                                                                 summary.refusedCount))) +
           UnknownText(summary) + settings +
           LabelledLine(0, "Assumed", "each further value of a field shows more records, each further field fewer;") +
           LabelledLine(0, "", "a template means the same beside others, and for one value as for several") +
           (excluding.empty()
                ? LabelledLine(0, "", "(name fields whose values are left out of what is shown: --excluding)")
                : LabelledLine(0, "", "excluding, so that each further value shows fewer: " + excluding));
}

std::string UserChangeText(const analysis::UserChange& user, bool isFull)
{
    const std::string was = NameOf(user.before.outcome);
    const std::string is = NameOf(user.after.outcome);
    std::string text =
        fmt::format("{}: {}{}{}\n", Quoted(user.user), was == is ? is : fmt::format("{} before, {} now", was, is),
                    user.because.empty() ? "" : "; ", user.because);
    for (const analysis::FieldChange& field : user.fields) {
        text += FieldText(field, isFull);
    }
    if (user.rows) {
        text += LabelledLine(3, "rows", RowChangeText(*user.rows));
    }
    if (user.change == analysis::Change::changed) {
        text += BeforeAndNow(user.before.filter, user.after.filter, isFull);
    }
    return text;
}

} // namespace secm::acfilter
