// Explains the filters of one repository, one user at a time. For help desks, audits and reports.
#pragma once

#include "analysis/Export.h"
#include "analysis/trace/Trace.h"

#include <memory>
#include <string>

namespace secm::analysis {

/// One object serves one thread at a time. Objects share nothing.
class SECM_ANALYSIS_EXPORT Tracer {
public:
    /// Reads the configuration that is in force for the calling thread, once and for the object's life. A repository
    /// that the configuration lacks has empty rules, as for the module. Users have the attributes and permissions that
    /// `tried` gives them; nothing is written. Throws what SECM_AccessControlInterface::CreateInstance throws, and
    /// std::runtime_error when the configuration changed meanwhile.
    explicit Tracer(const std::string& repository, WhatIf tried = {});
    ~Tracer();
    Tracer(Tracer&& other) noexcept;
    Tracer& operator=(Tracer&& other) noexcept;

    /// As SECM_AccessControlInterface::InitSecurityConnection. False: the security manager refused, and logged why.
    bool Connect(const char* connectionText, unsigned timeoutSeconds);

    /// Composes the user's filter by the module and tells how it came about. The filter is the one that a request of a
    /// host gets; with changes that are tried, the one that it would get.
    /// Throws what a request throws, and std::runtime_error when there is no connection, when the changes cannot be
    /// tried, or when a request would refuse what they grant.
    Trace Explain(const Request& request);

    /// What the configuration says. Valid as long as the object.
    const RepositoryRules& Rules() const;

private:
    class __attribute__((visibility("hidden"))) TracingManager;
    std::unique_ptr<TracingManager> manager;
};

} // namespace secm::analysis
