#include "tools/acfilter/render/DiffWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace secm::acfilter {

namespace {

constexpr std::size_t mostNamed = 5;

const char* TitleOf(analysis::Change change, bool isOnRows)
{
    switch (change) {
    case analysis::Change::wider:
        return "Wider";
    case analysis::Change::narrower:
        return "Narrower";
    default:
        return isOnRows ? "Changed" : "Changed; whether they see more is not known";
    }
}

bool HasSetting(const std::vector<analysis::SettingChange>& settings, analysis::Change change)
{
    return std::any_of(settings.begin(), settings.end(),
                       [change](const analysis::SettingChange& each) { return each.change == change; });
}

} // namespace

bool DiffSummary::Holds(analysis::Change change) const
{
    return CountOf(change) != 0 || HasSetting(settings, change);
}

bool DiffSummary::HasUnsettled() const
{
    return unsettledCount != 0 || HasSetting(settings, analysis::Change::changed);
}

DiffWriter::DiffWriter(DiffHead head, TextOutput& textOutput, bool forPrograms, bool isFull)
    : output(textOutput), isForPrograms(forPrograms), areTextsWhole(isFull)
{
    summary.head = std::move(head);
    for (auto& lines : users) {
        lines = output.MakeWaitingLines();
    }
}

void DiffWriter::Add(const analysis::UserChange& user)
{
    const auto kind = static_cast<std::size_t>(user.change);
    ++summary.counts.at(kind);
    const bool isSettled = user.rows && user.rows->error.empty();
    summary.unsettledCount += user.change == analysis::Change::changed && !isSettled ? 1U : 0U;
    summary.gainCount += user.rows && user.rows->gained != 0 ? 1U : 0U;
    summary.refusedCount += user.rows && !user.rows->error.empty() ? 1U : 0U;
    if (kind < users.size()) {
        users.at(kind)->Write(isForPrograms ? UserChangeJson(user) : UserChangeText(user, areTextsWhole));
    }
}

void DiffWriter::AddUnknown(const UnknownUser& user)
{
    ++summary.unknownCount;
    if (summary.firstUnknown.size() < mostNamed) {
        summary.firstUnknown.push_back(user);
    }
}

void DiffWriter::Finish()
{
    output.Write(isForPrograms ? SummaryJson(summary) : SummaryText(summary));
    for (const analysis::Change change : shownChanges) {
        if (!isForPrograms && summary.CountOf(change) != 0) {
            output.Write(fmt::format("\n{}\n", TitleOf(change, !summary.head.data.empty())));
        }
        users.at(static_cast<std::size_t>(change))->ForEachLine([&](std::string_view line) {
            output.Write(fmt::format("{}\n", line));
        });
    }
}

} // namespace secm::acfilter
