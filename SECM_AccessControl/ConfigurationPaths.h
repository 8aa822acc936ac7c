// Where in the configuration repository the module reads. A path that is continued by a name from elsewhere ends in
// the separator; one that continues such a name begins with it.
#pragma once

namespace configuration_paths {

inline constexpr const char* repositories =
    "zarvona\\system\\applications\\securitymanager\\unified_access_control\\repositories\\";
inline constexpr const char* fields = "zarvona\\system\\applications\\securitymanager\\unified_access_control\\fields";
inline constexpr const char* codeTables = "zarvona\\system\\applications\\codes\\";
inline constexpr const char* sites = "zarvona\\system\\sites";
/// Of the whole system under its own node, and of a site under the site's.
inline constexpr const char* issuer = "\\applications\\norvale\\pix\\assigning_authority\\value";
inline constexpr const char* system = "zarvona\\system";

} // namespace configuration_paths
