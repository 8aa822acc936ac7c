#include "tools/acfilter/Comparison.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t mostNamed = 5;

} // namespace

Comparison::Comparison(ComparisonHead comparisonHead, bool forPrograms, bool isFull)
    : head(std::move(comparisonHead)), isForPrograms(forPrograms), areTextsWhole(isFull)
{
}

void Comparison::Add(const UserChange& user)
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

bool Comparison::Holds(Change change) const
{
    return CountOf(change) != 0 || std::any_of(settings.begin(), settings.end(),
                                               [change](const SettingChange& each) { return each.change == change; });
}

void Comparison::WriteTo(OutputFile& output)
{
    output.Write(isForPrograms ? SummaryJson(*this) : SummaryText(*this));
    for (const Change change : toldChanges) {
        if (!isForPrograms && CountOf(change) != 0) {
            output.Write("\n" +
                         std::string(change == Change::wider      ? "Wider"
                                     : change == Change::narrower ? "Narrower"
                                                                  : "Changed, so that it cannot be told") +
                         "\n");
        }
        users.at(static_cast<std::size_t>(change)).ForEachLine([&](const std::string& line) {
            output.Write(line + "\n");
        });
    }
}
