// Tables that are ours by their keys or by their path, and that nobody reads, because a name is misspelt or a level is
// missing or too many. Tables of other programs are passed over.
#include "analysis/check/MisplacedTables.h"

#include "analysis/check/CheckRules.h"
#include "analysis/check/Spelling.h"
#include "analysis/definitions/KnownKeys.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <fmt/core.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace secm::analysis {

namespace {

using Names = std::vector<std::string>;

enum class Kind { settings, definition, code, issuer, siteIssuer }; // in the order of Patterns()

constexpr const char* anyName = "*";

// The path of the tables of one kind; `anyName` stands for a name that the administrator chooses.
struct Pattern {
    Kind kind;
    Names names;
};

Names Split(const std::string& path)
{
    Names names;
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find('\\', start), path.size());
        names.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return names;
}

const std::vector<Pattern>& Patterns()
{
    static const std::vector<Pattern> patterns = [] {
        const std::string any = std::string("\\") + anyName;
        std::string issuer = configuration_paths::issuer;
        issuer.resize(issuer.rfind('\\')); // without the key
        return std::vector<Pattern>{{Kind::settings, Split(RepositoriesPath() + any)},
                                    {Kind::definition, Split(FieldsPath() + any + any)},
                                    {Kind::code, Split(configuration_paths::codeTables + any.substr(1) + any)},
                                    {Kind::issuer, Split(configuration_paths::system + issuer)},
                                    {Kind::siteIssuer, Split(configuration_paths::sites + any + issuer)}};
    }();
    return patterns;
}

// Whether `names` is the path of a table that is read, or of one around it.
bool IsRead(const Names& names)
{
    return std::any_of(Patterns().begin(), Patterns().end(), [&](const Pattern& pattern) {
        return names.size() <= pattern.names.size() &&
               std::equal(names.begin(), names.end(), pattern.names.begin(),
                          [](const std::string& name, const std::string& wanted) {
                              return wanted == anyName || name == wanted;
                          });
    });
}

bool IsPathOf(const Names& names, const Pattern& pattern)
{
    return names.size() == pattern.names.size() &&
           std::equal(names.begin(), names.end(), pattern.names.begin(),
                      [](const auto& name, const auto& wanted) { return wanted == anyName || name == wanted; });
}

bool IsDefinitionKey(const std::string& key)
{
    const auto isNumbered = [&](std::string_view base) { return NumberOf(key, base) != 0; };
    return IsOneOf(definitionKeys, key) || std::any_of(numberedKeys.begin(), numberedKeys.end(), isNumbered);
}

// What a table was meant to be, by its keys. One key may be another program's by chance, so keys with common names
// count only together.
std::optional<Kind> KindByKeys(const std::vector<CFG_Entry>& entries)
{
    constexpr unsigned enough = 2;
    constexpr std::array<std::string_view, 4> common = {"default_filter", "filter_delimiter", "permission_value",
                                                        "my_field"};
    unsigned settings = 0;
    unsigned definition = 0;
    bool hasCondition = false;
    for (const CFG_Entry& entry : entries) {
        const unsigned weight = IsOneOf(common, entry.name) ? 1 : enough;
        if (entry.isNode) {
            continue;
        }
        if (NumberOf(entry.name, "condition") != 0) {
            hasCondition = true;
        } else if (IsOneOf(settingKeys, entry.name)) {
            settings += weight;
        } else if (IsDefinitionKey(entry.name)) {
            definition += weight;
        }
    }
    definition += hasCondition ? 1U : 0U;
    if (settings < enough && definition < enough) {
        return std::nullopt;
    }
    return settings > definition ? Kind::settings : Kind::definition;
}

bool HasKey(const std::vector<CFG_Entry>& entries, std::string_view key)
{
    return std::any_of(entries.begin(), entries.end(),
                       [&](const CFG_Entry& entry) { return !entry.isNode && entry.name == key; });
}

// How a path differs from a pattern: levels that are missing, too many or misspelt; and the path that is read instead.
struct Alignment {
    unsigned cost = 0;
    Names path;
};

constexpr unsigned misspelt = 1;
constexpr unsigned otherLevel = 1; // a level that is missing or too many
constexpr unsigned unrelated = 4;
constexpr unsigned farthestPath = 2; // of a table that only its path shows to be ours

unsigned CostOf(const std::string& name, const std::string& wanted)
{
    if (name == wanted || wanted == anyName) {
        return 0;
    }
    const std::size_t limit = std::max<std::size_t>(2, wanted.size() / 4);
    const std::size_t lengths = std::max(name.size(), wanted.size()) - std::min(name.size(), wanted.size());
    return lengths <= limit && name.size() > 2 && Distance(name, wanted) <= limit ? misspelt : unrelated;
}

// The cheapest alignment. Of equally cheap ones, the one whose last names stay together.
Alignment Align(const Names& names, const Names& pattern)
{
    const std::size_t width = pattern.size() + 1;
    std::vector<unsigned> costs((names.size() + 1) * width); // of the ends of both paths
    const auto at = [&](std::size_t name, std::size_t wanted) -> unsigned& { return costs[name * width + wanted]; };
    for (std::size_t name = 0; name <= names.size(); ++name) {
        for (std::size_t wanted = 0; wanted <= pattern.size(); ++wanted) {
            if (name == 0 || wanted == 0) {
                at(name, wanted) = otherLevel * static_cast<unsigned>(name + wanted);
            } else {
                at(name, wanted) = std::min({at(name - 1, wanted - 1) + CostOf(names[name - 1], pattern[wanted - 1]),
                                             at(name - 1, wanted) + otherLevel, at(name, wanted - 1) + otherLevel});
            }
        }
    }
    Alignment alignment{at(names.size(), pattern.size()), {}};
    for (std::size_t name = names.size(), wanted = pattern.size(); wanted > 0;) {
        if (name > 0 && at(name, wanted) == at(name - 1, wanted - 1) + CostOf(names[name - 1], pattern[wanted - 1])) {
            --name;
            --wanted;
            alignment.path.push_back(pattern[wanted] == anyName ? names[name] : pattern[wanted]);
        } else if (name > 0 && at(name, wanted) == at(name - 1, wanted) + otherLevel) {
            --name;
        } else {
            --wanted;
            alignment.path.push_back(pattern[wanted]);
        }
    }
    std::reverse(alignment.path.begin(), alignment.path.end());
    return alignment;
}

std::string Dotted(const Names& names)
{
    return fmt::format("[{}]", fmt::join(names, "."));
}

// A missing name that the administrator chooses, as the remedy shows it.
Names WithNamesToChoose(Names path, Kind kind)
{
    for (std::size_t at = 0; at < path.size(); ++at) {
        if (path[at] == anyName) {
            const bool isLast = at + 1 == path.size();
            path[at] = kind == Kind::settings     ? "NAME"
                       : kind == Kind::definition ? (isLast ? "REPOSITORY" : "FIELD")
                       : kind == Kind::code       ? (isLast ? "CODE" : "TABLE")
                                                  : "SITE";
        }
    }
    return path;
}

// Walks through all tables.
class MisplacedTables {
public:
    explicit MisplacedTables(FindingSink& into) : sink(into), repositories(TableNames(RepositoriesPath())) {}

    std::set<std::string> Run()
    {
        Walk({}, "", {}, false);
        return std::move(repositoriesMeant);
    }

private:
    struct Group {
        CFG_Place place;
        Names first;
        Names instead;
        Kind kind;
        unsigned count = 0;
    };

    // `isUnread`: nobody reads the table around it, which makes one finding with all tables below it.
    void Walk(const Names& names, const std::string& path, const CFG_Place& place, bool isUnread)
    {
        const std::vector<CFG_Entry> entries = CFG_ListEntries(path);
        const bool isOwnGroup = !isUnread && !names.empty() && !IsRead(names);
        if (isOwnGroup) {
            group = {place, {}, {}, Kind::settings, 0};
        }
        Inspect(names, entries, place);
        const bool isCode = IsPathOf(names, Patterns()[2]) && HasKey(entries, "display_name");
        for (const CFG_Entry& entry : entries) {
            if (entry.isNode && !isCode) {
                Names inner = names;
                inner.push_back(entry.name);
                Walk(inner, names.empty() ? entry.name : path + "\\" + entry.name, entry.place, isUnread || isOwnGroup);
            }
        }
        if (isOwnGroup) {
            Report();
        }
    }

    void Inspect(const Names& names, const std::vector<CFG_Entry>& entries, const CFG_Place& place)
    {
        if (names.empty() ||
            std::all_of(entries.begin(), entries.end(), [](const auto& each) { return each.isNode; })) {
            return;
        }
        if (const std::optional<Kind> kind = KindByKeys(entries)) {
            const Pattern& pattern = Patterns()[static_cast<std::size_t>(*kind)];
            if (!IsPathOf(names, pattern)) {
                Add(names, Instead(names, pattern), *kind, place);
            }
            return;
        }
        Alignment nearest{farthestPath + 1, {}};
        Kind nearestKind = Kind::code;
        for (const auto& [kind, key] : {std::pair(Kind::code, "display_name"), std::pair(Kind::issuer, "value"),
                                        std::pair(Kind::siteIssuer, "value")}) {
            if (HasKey(entries, key)) {
                Alignment alignment = Align(names, Patterns()[static_cast<std::size_t>(kind)].names);
                if (alignment.cost < nearest.cost) {
                    nearest = std::move(alignment);
                    nearestKind = kind;
                }
            }
        }
        if (nearest.cost <= farthestPath && !IsFullyRead(names)) {
            Add(names, std::move(nearest.path), nearestKind, place);
        }
    }

    static bool IsFullyRead(const Names& names)
    {
        return std::any_of(Patterns().begin(), Patterns().end(),
                           [&](const Pattern& pattern) { return IsPathOf(names, pattern); });
    }

    // The path that is read for a table of this kind.
    Names Instead(const Names& names, const Pattern& pattern) const
    {
        Names path = pattern.names;
        if (pattern.kind == Kind::settings) {
            const bool hasName = !IsFixedName(names.back());
            path.back() = hasName ? names.back() : anyName;
            return path;
        }
        // The last name is the repository, unless it is no repository and the one before it is not ours.
        const std::string& last = names.back();
        const bool isRepository = std::find(repositories.begin(), repositories.end(), last) != repositories.end();
        const bool hasTwo = names.size() > 1 && !IsFixedName(names[names.size() - 2]);
        if (!IsFixedName(last) && (hasTwo || isRepository)) {
            path.back() = last;
            path[path.size() - 2] = hasTwo ? names[names.size() - 2] : anyName;
        } else if (!IsFixedName(last)) {
            path[path.size() - 2] = last;
        }
        return path;
    }

    // Whether `name` is, or was meant to be, one of the names around repositories and fields.
    static bool IsFixedName(const std::string& name)
    {
        const Names& fixed = Patterns()[static_cast<std::size_t>(Kind::definition)].names;
        return CostOf(name, "repositories") < unrelated ||
               std::any_of(fixed.begin(), fixed.end(),
                           [&](const std::string& each) { return each != anyName && CostOf(name, each) < unrelated; });
    }

    void Add(const Names& names, Names instead, Kind kind, const CFG_Place& place)
    {
        if (IsRead(names)) { // a level is missing, or the table is of another kind
            group = {place, names, std::move(instead), kind, 1};
            Report();
            return;
        }
        if (++group.count == 1) {
            group.first = names;
            group.instead = std::move(instead);
            group.kind = kind;
        }
    }

    void Report()
    {
        if (group.count == 0) {
            return;
        }
        if (group.kind == Kind::settings) {
            repositoriesMeant.insert(group.instead.back());
        }
        const bool holdsValues = group.kind != Kind::settings && group.kind != Kind::definition;
        sink.Error(
            "AC036", group.place,
            fmt::format("the table {}{} read by nobody", Dotted(group.first),
                        group.count > 1 ? fmt::format(" and {} more below the same name are", group.count - 1) : " is"),
            group.kind == Kind::settings ? "the repository that was meant lacks these settings: a host that asks "
                                           "for it gets empty filters, and its users see every record"
            : holdsValues                ? "values are mapped without it: to the empty text, or to the issuer of "
                                           "all sites, so users may see other records than they were granted"
                                         : "the field restricts nobody: users see records that it was to hide",
            fmt::format("write {}", Dotted(WithNamesToChoose(group.instead, group.kind))));
        group.count = 0;
    }

    FindingSink& sink;
    Names repositories;
    std::set<std::string> repositoriesMeant;
    Group group{{}, {}, {}, Kind::settings, 0};
};

} // namespace

bool HoldsSettings(const std::vector<CFG_Entry>& entries)
{
    return KindByKeys(entries) == Kind::settings;
}

bool HoldsDefinition(const std::vector<CFG_Entry>& entries)
{
    return KindByKeys(entries) == Kind::definition;
}

std::set<std::string> CheckMisplacedTables(FindingSink& sink)
{
    return MisplacedTables(sink).Run();
}

} // namespace secm::analysis
