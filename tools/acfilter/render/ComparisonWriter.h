// Who sees more or less than before, for people and for programs: a summary, then the users by kind.
#pragma once

#include "analysis/compare/TraceComparison.h"
#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/TemporaryLines.h"

#include <array>

namespace secm::acfilter {

/// In the order in which they are told.
inline constexpr std::array toldChanges = {analysis::Change::wider, analysis::Change::changed,
                                           analysis::Change::narrower};

struct ComparisonHead {
    std::string repository;
    std::string before; ///< The configurations, as they were asked for.
    std::string after;
    bool hasOtherDatabase;
    std::vector<std::string> excluding;
};

/// A user whom neither side knows.
struct UnknownUser {
    std::string name;
    std::string known; ///< The name without blanks around it, when one side knows a user of that name; else empty.
};

/// Collects in files what has to wait for the summary, so it takes no memory however many users there are.
class Comparison {
public:
    /// `isFull`: long lists and texts are not cut short for people.
    Comparison(ComparisonHead comparisonHead, bool forPrograms, bool isFull);

    void Add(const analysis::UserChange& user);
    void Add(const analysis::SettingChange& setting) { settings.push_back(setting); }

    /// Counts a user whom neither side knows, who is added by Add as well.
    void AddUnknown(const UnknownUser& user);
    unsigned long long UnknownCount() const { return unknownCount; }
    const std::vector<UnknownUser>& FirstUnknown() const { return firstUnknown; } ///< At most five.

    unsigned long long CountOfAll() const { return counts[0] + counts[1] + counts[2] + counts[3]; }
    unsigned long long CountOf(analysis::Change change) const { return counts.at(static_cast<std::size_t>(change)); }

    /// Of a user or a setting.
    bool Holds(analysis::Change change) const;

    const std::vector<analysis::SettingChange>& Settings() const { return settings; }

    /// Once, at the end. This and Add throw std::runtime_error when something cannot be written.
    void WriteTo(OutputFile& output);

    const ComparisonHead head;

private:
    bool isForPrograms;
    bool areTextsWhole;
    std::vector<analysis::SettingChange> settings;
    std::array<unsigned long long, 4> counts{};
    unsigned long long unknownCount = 0;
    std::vector<UnknownUser> firstUnknown;
    std::array<Spool, toldChanges.size()> users = {Spool(""), Spool(""), Spool("")};
};

std::string SummaryText(const Comparison& comparison);
std::string SummaryJson(const Comparison& comparison);
std::string UserChangeText(const analysis::UserChange& user, bool isFull);
std::string UserChangeJson(const analysis::UserChange& user);

} // namespace secm::acfilter
