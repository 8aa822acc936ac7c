// Maps a site identifier to the site's assigning authority (its issuer), and a site without one of its own to
// the system-wide default. Both are read once; mapping never goes back to the repository.
#pragma once

#include "SECM_AccessControl/AccessControl_ValuesFunctionInterface.h"

#include <map>
#include <string>

class AccessControl_SiteIdToIssuerFunction : public AccessControl_ValuesFunctionInterface {
public:
    static AccessControl_ValuesFunctionInterface* CreateInstance();

    /// Reads the same sites whatever `configuration` says.
    bool Initialize(std::string configuration) override;

    bool MapValue(const std::string& siteId, std::string& issuer) override;

    ~AccessControl_SiteIdToIssuerFunction() override;

private:
    std::map<std::string, std::string> siteIssuers;
    std::string defaultIssuer;
};
