#include "tools/acfilter/render/ComparisonWriter.h"

#include <algorithm>
#include <utility>

namespace secm::acfilter {

namespace {

constexpr std::size_t mostNamed = 5;

} // namespace

Comparison::Comparison(ComparisonHead comparisonHead, bool forPrograms, bool isFull)
    : head(std::move(comparisonHead)), isForPrograms(forPrograms), areTextsWhole(isFull)
{
}

void Comparison::Add(const analysis::UserChange& user)
{
    const auto kind = static_cast<std::size_t>(user.change);
    ++counts.at(kind);
    if (kind < users.size()) {
        users.at(kind).Write(isForPrograms ? UserChangeJson(user) : UserChangeText(user, areTextsWhole));
    }
}

void Comparison::AddUnknown(const UnknownUser& user)
{
    ++unknownCount;
    if (firstUnknown.size() < mostNamed) {
        firstUnknown.push_back(user);
    }
}

bool Comparison::Holds(analysis::Change change) const
{
    return CountOf(change) != 0 ||
           std::any_of(settings.begin(), settings.end(),
                       [change](const analysis::SettingChange& each) { return each.change == change; });
}

void Comparison::WriteTo(OutputFile& output)
{
    output.Write(isForPrograms ? SummaryJson(*this) : SummaryText(*this));
    for (const analysis::Change change : toldChanges) {
        if (!isForPrograms && CountOf(change) != 0) {
            output.Write("\n" +
                         std::string(change == analysis::Change::wider      ? "Wider"
                                     : change == analysis::Change::narrower ? "Narrower"
                                                                            : "Changed, so that it cannot be told") +
                         "\n");
        }
        users.at(static_cast<std::size_t>(change)).ForEachLine([&](const std::string& line) {
            output.Write(line + "\n");
        });
    }
}

} // namespace secm::acfilter
