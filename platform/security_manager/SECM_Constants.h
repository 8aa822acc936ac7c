// What the module and every security manager must agree on.
#pragma once

#include <string_view>

namespace secm::platform {

/// A granted resource that stands for the user's own value, which is an attribute of the user.
inline constexpr std::string_view ownValue = "%my%";

/// The group of a log-in that does not choose a group: the security manager takes the user's own.
inline constexpr const char* noGroup = "$$$NO_GROUP$$$";

/// The resource whose permission decides when the requested resource is not listed.
inline constexpr const char* defaultResource = "default";

/// The version of SecurityManagerInterface that getSecurityManagerInterface is asked for.
inline constexpr unsigned securityManagerVersion = 0x11010A17;

/// The version of SMADM_Interface that getSECM_Interface is asked for.
inline constexpr unsigned administrationVersion = 1;

/// The mode in which both interfaces are initialized.
inline constexpr const char* connectionMode = "nonsecure";

} // namespace secm::platform
