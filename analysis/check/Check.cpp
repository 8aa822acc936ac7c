#include "analysis/check/Check.h"

#include "analysis/check/CheckRules.h"
#include "analysis/check/CheckedConfiguration.h"
#include "platform/configuration/CFG_Listing.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>
#include <unordered_set>
#include <utility>

namespace secm::analysis {

namespace {

bool HasMisplacedTables()
{
    std::vector<Finding> findings;
    FindingSink sink(findings, "");
    CheckMisplacedTables(sink);
    return !findings.empty();
}

// Without any repository, misplaced tables are most likely the reason, and findings say more than an exception.
std::vector<CheckedRepository> RequireRepositories(const std::optional<std::string>& name)
{
    if (CFG_ListEntries == nullptr) {
        throw std::runtime_error("the configuration library in use cannot list what it holds, which check needs");
    }
    std::vector<CheckedRepository> repositories = ReadRepositories(name);
    if (repositories.empty() && (!TableNames(RepositoriesPath()).empty() || !HasMisplacedTables())) {
        const std::string table = configuration_paths::Dotted(configuration_paths::repositories);
        throw NoRepositoryError(
            name
                ? fmt::format("the configuration has no repository '{}'; correct the name, or add its table under [{}]",
                              *name, table)
                : fmt::format("the configuration has no repository; add the table [{}.NAME] with its settings", table));
    }
    return repositories;
}

// The permissions that any definition asks for, also one of a repository that is not checked.
std::unordered_set<std::string> PermissionsAskedFor()
{
    const CFG_RepositoryServices* root = CFG_Factory::GetRepositoryServices();
    std::unordered_set<std::string> names;
    for (const std::string& field : TableNames(FieldsPath())) {
        const std::string path = FieldsPath() + "\\" + field;
        for (const std::string& repository : TableNames(path)) {
            names.emplace(root->GetValueByPath(fmt::format("{}\\{}\\permission_name", path, repository)));
        }
    }
    return names;
}

void CheckRepository(const CheckedRepository& repository, FindingSink& sink)
{
    CheckSettings(repository, sink);
    CheckWholeFilters(repository, sink);
    CheckOperators(repository, sink);
    CheckLists(repository, sink);
    CheckJoins(repository, sink);
    for (const CheckedDefinition& definition : repository.definitions) {
        CheckDefinition(definition, sink);
        CheckConditionNumbers(definition, sink);
        for (const CheckedCondition& condition : definition.conditions) {
            const CheckedScope scope{repository, definition, condition};
            CheckPlaceholders(scope, sink);
            CheckTemplateSyntax(scope, sink);
            CheckTokens(scope, sink);
            CheckValuesFunction(scope, sink);
        }
    }
    CheckUnreadNames(repository, sink);
}

// Removes what is found in the line of a misplaced table only because it is misplaced.
void RemoveExplained(const std::vector<Finding>& misplaced, std::vector<Finding>& findings)
{
    std::set<std::pair<std::string, unsigned>> lines;
    for (const Finding& finding : misplaced) {
        lines.emplace(finding.place.file, finding.place.line);
    }
    const std::set<std::string> codes = {"AC001", "AC003", "AC031", "AC032", "AC033"};
    std::erase_if(findings, [&](const Finding& finding) {
        return codes.count(finding.code) != 0 && lines.count({finding.place.file, finding.place.line}) != 0;
    });
}

std::vector<Finding> CheckRepositories(const std::vector<CheckedRepository>& repositories)
{
    std::vector<Finding> findings;
    for (const CheckedRepository& repository : repositories) {
        FindingSink sink(findings, repository.Rules().repository);
        CheckRepository(repository, sink);
    }
    CheckCodeTables(repositories, findings);
    CheckSiteIssuers(repositories, findings);
    CheckUnquotedNames(repositories, findings);
    CheckDifferences(repositories, findings);
    std::vector<Finding> misplaced;
    FindingSink ofMisplaced(misplaced, "");
    const std::set<std::string> misplacedRepositories = CheckMisplacedTables(ofMisplaced);
    FindingSink shared(findings, "");
    CheckSharedUnreadNames(misplacedRepositories, shared);
    RemoveExplained(misplaced, findings);
    findings.insert(findings.end(), misplaced.begin(), misplaced.end());
    return findings;
}

// Two rules may find the same mistake.
std::vector<Finding> SortedWithoutDuplicates(std::vector<Finding> findings)
{
    std::sort(findings.begin(), findings.end());
    findings.erase(std::unique(findings.begin(), findings.end()), findings.end());
    return findings;
}

} // namespace

struct ConfigurationCheck::Checked {
    explicit Checked(const std::optional<std::string>& repository)
        : repositories(RequireRepositories(repository)), permissions(PermissionsAskedFor()),
          findings(SortedWithoutDuplicates(CheckRepositories(repositories)))
    {
    }

    std::vector<CheckedRepository> repositories;
    std::unordered_set<std::string> permissions;
    std::vector<Finding> findings;
};

ConfigurationCheck::ConfigurationCheck(const std::optional<std::string>& repository)
    : checked(std::make_unique<const Checked>(repository))
{
}

ConfigurationCheck::~ConfigurationCheck() = default;
ConfigurationCheck::ConfigurationCheck(ConfigurationCheck&& other) noexcept = default;
ConfigurationCheck& ConfigurationCheck::operator=(ConfigurationCheck&& other) noexcept = default;

const std::vector<Finding>& ConfigurationCheck::Findings() const
{
    return checked->findings;
}

std::vector<std::string> ConfigurationCheck::Repositories() const
{
    std::vector<std::string> names;
    for (const CheckedRepository& repository : checked->repositories) {
        names.push_back(repository.Rules().repository);
    }
    return names;
}

std::vector<Finding> ConfigurationCheck::CheckGrants(SECM_ListingInterface& security) const
{
    std::vector<Finding> findings;
    CheckConnectionRisks(security, findings);
    CheckSecurity(checked->repositories, checked->permissions, security, findings);
    return SortedWithoutDuplicates(std::move(findings));
}

} // namespace secm::analysis
