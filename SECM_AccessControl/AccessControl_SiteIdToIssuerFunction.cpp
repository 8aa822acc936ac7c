#include "SECM_AccessControl/AccessControl_SiteIdToIssuerFunction.h"

#include "SECM_AccessControl/Log.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"

#include <memory>

namespace {

constexpr secm::LogOrigin sitesLog{"SECM_AccessControl/AccessControl_SiteIdToIssuerFunction",
                                   "AccessControl_SiteIdToIssuerFunction::Initialize"};

} // namespace

AccessControl_ValuesFunctionInterface* AccessControl_SiteIdToIssuerFunction::CreateInstance()
{
    return new AccessControl_SiteIdToIssuerFunction;
}

AccessControl_SiteIdToIssuerFunction::~AccessControl_SiteIdToIssuerFunction() = default;

bool AccessControl_SiteIdToIssuerFunction::Initialize(std::string /*configuration*/)
{
    const CFG_RepositoryServices* repository = CFG_Factory::GetRepositoryServices();
    if (repository == nullptr) {
        SECM_LOG(sitesLog, failureLevel, "Could not create CFG instance\n");
        return false;
    }
    const std::unique_ptr<CFG_NameList> sites(repository->GetChildNames(secm::configuration_paths::sites));
    const int count = sites ? sites->GetCount() : 0;
    std::string path = std::string(secm::configuration_paths::sites) + "\\";
    const std::size_t upToSite = path.size();
    for (int index = 0; index < count; ++index) {
        std::string site = sites->GetName(index);
        path.resize(upToSite);
        path.append(site).append(secm::configuration_paths::issuer);
        const RWCString issuer = repository->GetValueByPath(path);
        if (!site.empty() && issuer.length() != 0) {
            siteIssuers.insert_or_assign(siteIssuers.end(), std::move(site),
                                         std::string(issuer.data(), issuer.length()));
        }
    }
    // Ends at its first NUL, unlike the issuer of a site.
    defaultIssuer = static_cast<const char*>(
        repository->GetValueByPath(RWCString(secm::configuration_paths::system) + secm::configuration_paths::issuer));
    return true;
}

bool AccessControl_SiteIdToIssuerFunction::MapValue(const std::string& siteId, std::string& issuer)
{
    const auto found = siteIssuers.find(siteId);
    issuer = found != siteIssuers.end() ? found->second : defaultIssuer;
    return true;
}
