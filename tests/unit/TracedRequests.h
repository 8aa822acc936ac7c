// Requests to the tracer. Only this file of the scenarios knows it.
#pragma once

#include "analysis/trace/Tracer.h"
#include "tests/Permissions.h"
#include "tools/acfilter/commands/TriedChanges.h"
#include "tools/acfilter/render/Explanation.h"

#include <optional>
#include <string>

namespace secm::testing {

class TracedRequests {
public:
    /// Adds a change to what the next tracers try. False: `what` is none.
    bool Try(const std::string& what, const std::string& change)
    {
        if (what == "try-attribute") {
            tried.attributes.insert(acfilter::AttributeFrom(change).value());
        } else if (what == "try-grant") {
            tried.grants.push_back(acfilter::GrantFrom(change).value());
        } else if (what == "try-revoke") {
            tried.revocations.push_back({change});
        } else {
            return false;
        }
        return true;
    }

    /// Makes the tracer that answers Ask. False: it cannot connect.
    bool Connect(const std::string& repository) { return tracer.emplace(repository, tried).Connect("text", 7); }

    /// The outcome and, in brackets, the filter.
    std::string Ask(const std::string& user, bool isByName)
    {
        const analysis::Answer given = tracer.value().Explain({user, "ip", isByName}).answer;
        return NameOf(given.outcome) + ("[" + given.filter + "]");
    }

    /// What a tracer of its own traces of one request.
    analysis::Trace Traced(const std::string& repository, const std::string& user, bool isByName) const
    {
        analysis::Tracer own(repository, tried);
        own.Connect("text", 7);
        return own.Explain({user, "ip", isByName});
    }

    std::string Explained(const std::string& repository, const std::string& user, bool isByName) const
    {
        return acfilter::ExplanationText(Traced(repository, user, isByName), {});
    }

private:
    analysis::WhatIf tried;
    std::optional<analysis::Tracer> tracer;
};

} // namespace secm::testing
