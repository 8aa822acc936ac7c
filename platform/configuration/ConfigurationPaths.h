// The paths of the nodes that the module reads, for all code that names these nodes. A path to which a name is appended
// ends with the separator; a path that is appended to a name begins with it.
#pragma once

#include <algorithm>
#include <string>

namespace secm::configuration_paths {

inline constexpr const char* repositories =
    "zarvona\\system\\applications\\securitymanager\\unified_access_control\\repositories\\";
inline constexpr const char* fields = "zarvona\\system\\applications\\securitymanager\\unified_access_control\\fields";
inline constexpr const char* codeTables = "zarvona\\system\\applications\\codes\\";
inline constexpr const char* sites = "zarvona\\system\\sites";
/// Appended to `system` for the system-wide issuer, and to the path of a site for the issuer of that site.
inline constexpr const char* issuer = "\\applications\\norvale\\pix\\assigning_authority\\value";
inline constexpr const char* system = "zarvona\\system";

/// `path` with dots between its names, as messages show it, and without a separator at its end.
inline std::string Dotted(std::string path)
{
    if (path.ends_with('\\')) {
        path.pop_back();
    }
    std::replace(path.begin(), path.end(), '\\', '.');
    return path;
}

} // namespace secm::configuration_paths
