// Requests to the tracer. Only this file of the scenarios knows it.
#pragma once

#include "analysis/trace/GrantText.h"
#include "analysis/trace/Tracer.h"
#include "tests/Permissions.h"
#include "tools/acfilter/commands/TriedChanges.h"
#include "tools/acfilter/render/Explanation.h"

#include <optional>
#include <stdexcept>
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
            tried.grants.push_back(analysis::GrantFrom(change).value());
        } else if (what == "try-revoke") {
            tried.revocations.push_back({change});
        } else {
            return false;
        }
        return true;
    }

    /// Makes the tracer that answers Ask. False: it cannot connect.
    bool Connect(const std::string& repository) { return tracer.emplace(repository, tried).Connect("text", 7); }

    /// The outcome, the filter in brackets, and how many grants each revocation took.
    std::string Ask(const std::string& user, bool isByName)
    {
        const analysis::Trace trace = tracer.value().Explain({user, "ip", isByName});
        std::string answer = NameOf(trace.answer.outcome) + ("[" + trace.answer.filter + "]");
        for (const analysis::WhatIf::Revocation& revocation : trace.tried.revocations) {
            answer += " revoked " + std::to_string(revocation.revoked);
        }
        return answer;
    }

    /// Why a log-in cannot be answered; empty: it can.
    std::string Refusal(const std::string& user)
    {
        try {
            Ask(user, false);
            return "";
        } catch (const std::runtime_error& error) {
            return error.what();
        }
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
        return acfilter::ExplanationText({Traced(repository, user, isByName), {}, {}, {}, {}}, {});
    }

private:
    analysis::WhatIf tried;
    std::optional<analysis::Tracer> tracer;
};

} // namespace secm::testing
