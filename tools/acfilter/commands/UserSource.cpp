#include "tools/acfilter/commands/UserSource.h"

#include "platform/security_manager/SECM_Listing.h"
#include "tools/acfilter/commands/Errors.h"

#include <stdexcept>

namespace secm::acfilter {

void RequireUsersFrom(const std::optional<std::string>& path)
{
    if (path && path->empty()) {
        throw UsageError("the path given to --users-from is empty");
    }
    if (path == "-") {
        RequireStandardInput();
    }
}

void ForEachUserOfDatabase(const HostOptions& options, const UserHandler& handle)
{
    if (openSECM_Listing == nullptr) {
        throw std::runtime_error("the security manager in use cannot list its users; name them with --users-from");
    }
    openSECM_Listing(options.securityDatabase.c_str(), options.timeoutSeconds)->ForEachUser(handle);
}

} // namespace secm::acfilter
