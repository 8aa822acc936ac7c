// Maps a site identifier to the site's assigning authority (its issuer). A site without one maps to the system-wide
// issuer. Initialize reads both once; MapValue does not read the configuration.
#pragma once

#include "SECM_AccessControl/AccessControl_ValuesFunctionInterface.h"

#include <map>
#include <string>

class AccessControl_SiteIdToIssuerFunction : public AccessControl_ValuesFunctionInterface {
public:
    static AccessControl_ValuesFunctionInterface* CreateInstance();

    /// Ignores `configuration`: there is one list of sites.
    bool Initialize(std::string configuration) override;

    /// Always returns true.
    bool MapValue(const std::string& siteId, std::string& issuer) override;

    ~AccessControl_SiteIdToIssuerFunction() override;

private:
    std::map<std::string, std::string> siteIssuers;
    std::string defaultIssuer;
};
