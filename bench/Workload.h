// What is measured: field definitions and one user, who holds the fields' permissions for some resources.
#pragma once

#include "platform/security_manager/PermissionBase.h"

#include <string>
#include <vector>

namespace secm::bench {

enum class ValueKind { plain, siteIssuer, codeName, own };

struct Workload {
    const char* name;
    int fields;
    int conditions;
    int values;
    ValueKind kind = ValueKind::plain;
    bool isHeldOutright = false;
};

inline constexpr Workload smallWorkload{"small", 3, 1, 3};
inline constexpr Workload typicalWorkload{"typical", 5, 2, 8};
inline constexpr Workload wideWorkload{"wide", 20, 3, 50};
inline constexpr Workload shortListWorkload{"list-1k", 1, 1, 1000};
inline constexpr Workload longListWorkload{"list-100k", 1, 1, 100000};

inline constexpr Workload workloads[] = {smallWorkload, typicalWorkload, wideWorkload, shortListWorkload,
                                         longListWorkload};

inline constexpr const char* workloadRepository = "bench";
inline constexpr const char* workloadAddress = "10.0.0.1";

/// A configuration with the workload's repository, as TOML.
std::string ConfigurationOf(const Workload& workload);

/// The last entry of the table that the workload's values function reads, and what it maps to.
std::string LastValueOf(const Workload& workload);
std::string LastMappedValueOf(const Workload& workload);

/// The user has one resource for each of the fields 2, 4, 6 ... and all resources for the others.
std::vector<PermissionBase> PermissionsOf(const Workload& workload);

} // namespace secm::bench
