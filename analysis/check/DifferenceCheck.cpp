// What one repository has and a similar one lacks: a field, a permission's name, a values function.
#include "analysis/check/CheckRules.h"

#include "analysis/check/QueryText.h"
#include "analysis/check/Spelling.h"
#include "analysis/check/WordCharacter.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace secm::analysis {

namespace {

// Which repositories have which fields, also those that are not checked. Both are numbered.
struct FieldsOfRepositories {
    FieldsOfRepositories() : fields(TableNames(FieldsPath())), repositories(TableNames(RepositoriesPath()))
    {
        std::map<std::string, std::size_t> numbers;
        for (std::size_t repository = 0; repository < repositories.size(); ++repository) {
            numbers.emplace(repositories[repository], repository);
        }
        fieldsOf.resize(repositories.size());
        repositoriesOf.resize(fields.size());
        for (std::size_t field = 0; field < fields.size(); ++field) {
            for (const std::string& repository : TableNames(FieldsPath() + "\\" + fields[field])) {
                if (const auto number = numbers.find(repository); number != numbers.end()) {
                    fieldsOf[number->second].push_back(field);
                    repositoriesOf[field].push_back(number->second);
                }
            }
        }
    }

    // How many fields of `repository` each repository has.
    std::vector<std::size_t> SharedWith(std::size_t repository) const
    {
        std::vector<std::size_t> shared(repositories.size());
        for (const std::size_t field : fieldsOf[repository]) {
            for (const std::size_t other : repositoriesOf[field]) {
                ++shared[other];
            }
        }
        return shared;
    }

    // The names of the fields that `other` has and `repository` lacks.
    std::vector<std::string> Lacking(std::size_t repository, std::size_t other) const
    {
        std::vector<std::string> names;
        for (const std::size_t field : fieldsOf[other]) {
            const auto& has = repositoriesOf[field];
            if (std::find(has.begin(), has.end(), repository) == has.end()) {
                names.push_back(fields[field]);
            }
        }
        return names;
    }

    std::vector<std::string> fields;
    std::vector<std::string> repositories;
    std::vector<std::vector<std::size_t>> fieldsOf;
    std::vector<std::vector<std::size_t>> repositoriesOf;
};

std::string LackingFields(const std::vector<std::string>& names)
{
    return names.size() == 1 ? fmt::format("field '{}'", names.front())
                             : fmt::format("fields '{}' and {} more", names.front(), names.size() - 1);
}

// Repositories are alike when they share at least two fields, and more fields than one of them lacks.
void FieldsOfSomeRepositories(const std::vector<CheckedRepository>& checked, std::vector<Finding>& findings)
{
    const FieldsOfRepositories all;
    for (const CheckedRepository& repository : checked) {
        const std::string& name = repository.Rules().repository;
        const auto number = static_cast<std::size_t>(std::find(all.repositories.begin(), all.repositories.end(), name) -
                                                     all.repositories.begin());
        if (number == all.repositories.size()) {
            continue;
        }
        const std::vector<std::size_t> shared = all.SharedWith(number);
        std::size_t most = number;
        for (std::size_t other = 0; other < shared.size(); ++other) {
            const std::size_t lacking = all.fieldsOf[other].size() - shared[other];
            const bool isAlike = shared[other] > 1 && lacking > 0 && lacking < shared[other];
            if (isAlike && (most == number || shared[other] > shared[most])) {
                most = other;
            }
        }
        if (most != number) {
            const std::string& other = all.repositories[most];
            const std::vector<std::string> lacking = all.Lacking(number, most);
            FindingSink(findings, name)
                .Warn("AC037", repository.table.place,
                      fmt::format("the repository '{}' has {} fields of '{}', but not the {}", name, shared[most],
                                  other, LackingFields(lacking)),
                      fmt::format("that restricts the users of '{}', and no user of '{}'", other, name),
                      fmt::format("add the table fields.{}.{}, unless its records have no such field", lacking.front(),
                                  name));
        }
    }
}

// Whether one was probably meant to be the other: it differs by case, by blanks, by one letter more or less, or by two
// letters swapped. Another letter in its place may be meant.
bool IsSlip(const std::string& one, const std::string& other)
{
    const auto sorted = [](std::string text) {
        text = LowerCase(WithoutOuterBlanks(text));
        std::sort(text.begin(), text.end());
        return text;
    };
    constexpr std::string_view digits = "0123456789";
    return one != other && Distance(WithoutOuterBlanks(one), WithoutOuterBlanks(other)) <= 1 &&
           (one.size() != other.size() || sorted(one) == sorted(other)) && one.find_last_of(digits) != one.size() - 1 &&
           other.find_last_of(digits) != other.size() - 1;
}

// The word that a template begins with: most often the name of a column.
std::string FirstWord(const std::string& text)
{
    const auto end = std::find_if_not(text.begin(), text.end(), IsWordCharacter);
    return {text.begin(), end};
}

struct Use {
    const CheckedRepository* repository;
    const CheckedDefinition* definition;
};

void PermissionsDiffer(const Use& use, const Use& other, std::vector<Finding>& findings)
{
    const std::string& name = use.definition->rule->permissionName;
    const std::string& otherName = other.definition->rule->permissionName;
    if (!name.empty() && !otherName.empty() && IsSlip(name, otherName)) {
        FindingSink(findings, use.repository->Rules().repository)
            .Warn("AC065", use.definition->table.PlaceOf("permission_name"),
                  fmt::format("the field '{}' asks for the permission '{}' here, and for '{}' in the repository '{}'",
                              use.definition->rule->name, name, otherName, other.repository->Rules().repository),
                  "grants of the one do not count for the other: users who have no grant of the misspelt one get the "
                  "hide-all filter",
                  "write the same name in both");
    }
}

void MappingsDiffer(const Use& use, const Use& other, std::vector<Finding>& findings)
{
    for (const CheckedCondition& condition : use.definition->conditions) {
        for (const CheckedCondition& mapped : other.definition->conditions) {
            const std::string word = FirstWord(condition.rule->text);
            if (condition.rule->function.empty() && mapped.rule->isMapped && !word.empty() &&
                condition.Has("%values%") && mapped.Has("%values%") && word == FirstWord(mapped.rule->text) &&
                use.definition->rule->permissionName == other.definition->rule->permissionName) {
                const CheckedScope scope{*use.repository, *use.definition, condition};
                FindingSink(findings, use.repository->Rules().repository)
                    .Warn("AC066", scope.PlaceOf("condition"),
                          fmt::format("{} writes values as they are granted, and the repository '{}' maps them by {} "
                                      "for '{}' too",
                                      condition.Key("condition"), other.repository->Rules().repository,
                                      mapped.rule->function, word),
                          fmt::format("if '{}' means the same in both, users see other records here than they were "
                                      "granted, or none",
                                      word),
                          fmt::format("write {} = \"{}\"{}, unless the two hold different values",
                                      condition.Key("values_function"), mapped.rule->function,
                                      mapped.rule->functionConfiguration.empty()
                                          ? ""
                                          : fmt::format(" and {} = \"{}\"",
                                                        condition.Key("values_function_config_string"),
                                                        mapped.rule->functionConfiguration)));
                return;
            }
        }
    }
}

// Compares each repository's definition of a field with that of the first repository that has it, and the reverse.
void DefinitionsOfOneField(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings)
{
    std::map<std::string, Use> firstUses;
    for (const CheckedRepository& repository : repositories) {
        for (const CheckedDefinition& definition : repository.definitions) {
            const Use use{&repository, &definition};
            const auto [first, isNew] = firstUses.try_emplace(definition.rule->name, use);
            if (!isNew) {
                PermissionsDiffer(use, first->second, findings);
                MappingsDiffer(use, first->second, findings);
                MappingsDiffer(first->second, use, findings);
            }
        }
    }
}

} // namespace

void CheckDifferences(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings)
{
    FieldsOfSomeRepositories(repositories, findings);
    DefinitionsOfOneField(repositories, findings);
}

} // namespace secm::analysis
