// Finds the mistakes of administrators in a configuration and in what is granted to users.
#pragma once

#include "analysis/Export.h"
#include "analysis/check/Finding.h"

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

class SECM_ListingInterface;

namespace secm::analysis {

/// The configuration has no repository at all and nothing that explains it (AC036), or none of the name that was given.
class SECM_ANALYSIS_EXPORT NoRepositoryError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads and checks the configuration in its constructor, and never reads it again. One object serves one thread at a
/// time. Objects share nothing. An object that was moved from may only be assigned to or destroyed.
class SECM_ANALYSIS_EXPORT ConfigurationCheck {
public:
    /// Checks the repository named `repository`, else all repositories, of the configuration that is in force for the
    /// calling thread.
    /// Throws NoRepositoryError when there is none to check, std::runtime_error when the configuration library cannot
    /// list what it holds (CFG_ListEntries is null) or the configuration changed meanwhile, and what
    /// SECM_AccessControlInterface::CreateInstance throws.
    explicit ConfigurationCheck(const std::optional<std::string>& repository = {});
    ~ConfigurationCheck();
    ConfigurationCheck(ConfigurationCheck&& other) noexcept;
    ConfigurationCheck& operator=(ConfigurationCheck&& other) noexcept;

    /// What is wrong with the configuration alone: sorted, each finding once. Valid until the object is destroyed or
    /// assigned to; moving it keeps them.
    const std::vector<Finding>& Findings() const;

    /// The names of the repositories that are checked, in the order of the configuration.
    std::vector<std::string> Repositories() const;

    /// What is wrong with the users, grants and attributes under this configuration, and with the connection: sorted,
    /// each finding once. Reads everything once, and keeps the users' names and some numbers of each grant. It does not
    /// check whether the database is damaged; SECM_ListingInterface::CheckIntegrity does. Throws what `security`
    /// throws.
    std::vector<Finding> CheckGrants(SECM_ListingInterface& security) const;

private:
    struct __attribute__((visibility("hidden"))) Checked;
    std::unique_ptr<const Checked> checked;
};

} // namespace secm::analysis
