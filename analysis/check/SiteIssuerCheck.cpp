// The issuers of the sites, by which SiteIdToIssuer maps values. The sites are read once for all conditions.
#include "analysis/check/CheckRules.h"

#include "analysis/check/EmptyValue.h"
#include "analysis/check/Spelling.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <fmt/core.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace secm::analysis {

namespace {

constexpr const char* issuerRemedy =
    "write its value under applications.norvale.pix.assigning_authority, or one for all "
    "sites under [zarvona.system.applications.norvale.pix.assigning_authority]";

bool HasIssuer(const std::string& path)
{
    return *CFG_Factory::GetRepositoryServices()->GetValueByPath(path + configuration_paths::issuer) != '\0';
}

// Looks for a misspelt name between the site or the system at `path`, which has no issuer, and the key of its issuer.
// False when there is none.
bool MisspeltIssuer(std::string path, FindingSink& sink)
{
    std::string_view rest = configuration_paths::issuer;
    while (!rest.empty()) {
        rest.remove_prefix(1);
        const std::string name(rest.substr(0, rest.find('\\')));
        const std::vector<CFG_Entry> entries = CFG_ListEntries(path);
        const auto isName = [&](const CFG_Entry& entry) { return entry.name == name; };
        if (std::none_of(entries.begin(), entries.end(), isName)) {
            const auto near = std::find_if(entries.begin(), entries.end(), [&](const CFG_Entry& entry) {
                return !Nearest(entry.name, {name}).empty();
            });
            if (near != entries.end()) {
                sink.Error("AC031", near->place, fmt::format("the key '{}' is read by nobody", near->name),
                           "users' filters have the issuer of all sites in place of this one, or the empty text: they "
                           "may see records of other sites",
                           fmt::format("did you mean '{}'?", name));
            }
            return near != entries.end();
        }
        path += "\\" + name;
        rest.remove_prefix(name.size());
    }
    return false; // every name is right, and the value is empty
}

void SitesWithoutIssuer(bool hasIssuerForAll, FindingSink& sink)
{
    const std::string sites = configuration_paths::sites;
    for (const CFG_Entry& site : CFG_ListEntries(sites)) {
        const std::string path = sites + "\\" + site.name;
        if (site.isNode && !HasIssuer(path) && !MisspeltIssuer(path, sink) && !hasIssuerForAll) {
            sink.Warn("AC026", site.place,
                      fmt::format("the site '{}' has no issuer, and there is none for all sites", site.name),
                      thisValueIsEmpty, issuerRemedy);
        }
    }
}

void NeitherSiteNorIssuer(const std::vector<CheckedScope>& scopes, std::vector<Finding>& findings)
{
    if (TableNames(configuration_paths::sites).empty()) {
        for (const CheckedScope& scope : scopes) {
            FindingSink(findings, scope.repository.Rules().repository)
                .Warn("AC026", scope.PlaceOf("values_function"), "there is no site, and no issuer for all sites",
                      everyValueIsEmpty, issuerRemedy);
        }
    }
}

} // namespace

void CheckSiteIssuers(const std::vector<CheckedRepository>& repositories, std::vector<Finding>& findings)
{
    const std::vector<CheckedScope> scopes = ScopesMappedBy("SiteIdToIssuer", repositories);
    if (scopes.empty()) {
        return;
    }
    FindingSink shared(findings, "");
    const bool hasIssuerForAll = HasIssuer(configuration_paths::system);
    if (!hasIssuerForAll) {
        MisspeltIssuer(configuration_paths::system, shared);
        NeitherSiteNorIssuer(scopes, findings);
    }
    SitesWithoutIssuer(hasIssuerForAll, shared);
}

} // namespace secm::analysis
