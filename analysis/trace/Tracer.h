// Explains the filters of one repository, one user at a time. For help desks, audits and reports.
#pragma once

#include "analysis/Export.h"
#include "analysis/trace/Trace.h"

#include <memory>
#include <string>
#include <vector>

namespace secm::analysis {

/// One object serves one thread at a time. Objects share nothing. A tracer that was moved from may only be assigned to
/// or destroyed. After an exception the tracer may be used again.
class SECM_ANALYSIS_EXPORT Tracer {
public:
    /// Reads the configuration that is in force for the calling thread, once and for the object's life. A repository
    /// that the configuration lacks has empty rules, as for the module. Users have the attributes and permissions that
    /// `tried` gives them; nothing is written. Throws what SECM_AccessControlInterface::CreateInstance throws, and
    /// std::runtime_error when the configuration changed meanwhile.
    explicit Tracer(const std::string& repository, WhatIf tried = {});
    /// Tracers of several repositories, as the constructor makes them, in the order of `repositories`. Lists the tables
    /// of the configuration once for all.
    static std::vector<Tracer> OfRepositories(const std::vector<std::string>& repositories);
    ~Tracer();
    Tracer(Tracer&& other) noexcept;
    Tracer& operator=(Tracer&& other) noexcept;

    /// Connects as SECM_AccessControlInterface::InitSecurityConnection does, within `timeoutSeconds` (0: the security
    /// manager's own limit). False: the security manager refused and logged the reason; Explain then throws. Another
    /// call replaces the connection. Throws std::runtime_error when the administration library cannot be opened.
    bool Connect(const char* connectionText, unsigned timeoutSeconds);

    /// Lets the module compose the user's filter, and gives it with the steps that led to it. A request of a host gets
    /// the same filter; with changes that are tried, it would get it if they were stored.
    /// Throws what a request throws, and std::runtime_error when there is no connection, when the changes cannot be
    /// tried, or when a request would refuse what they grant.
    Trace Explain(const Request& request);

    /// As Explain, and also gives in Trace::later the fields behind one that hides every record. For them the module
    /// composes once more, from the later fields alone.
    Trace ExplainAll(const Request& request);

    /// The rules that the constructor read. Valid until the tracer is destroyed or assigned to; moving it keeps them.
    const RepositoryRules& Rules() const;

private:
    class __attribute__((visibility("hidden"))) TracingManager;
    explicit Tracer(std::unique_ptr<TracingManager> tracing);

    std::unique_ptr<TracingManager> manager;
};

} // namespace secm::analysis
