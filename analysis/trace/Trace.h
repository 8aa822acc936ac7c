// How one answer came about, in the order in which the module composed it.
#pragma once

#include "analysis/Export.h"
#include "analysis/definitions/Rules.h"
#include "analysis/trace/WhatIf.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace secm::analysis {

/// What an answer came to, which the text of a filter alone does not say.
enum class Outcome { unrestricted, restricted, hideAll, unknownUser };

/// "unrestricted", "restricted", "hide-all" or "default".
SECM_ANALYSIS_EXPORT const char* NameOf(Outcome outcome);

struct Request {
    std::string userName;
    std::string ipAddress;
    bool withoutLogin = false; ///< Asked by name, through the administration interface.
};

struct Answer {
    std::string filter;
    Outcome outcome = Outcome::unknownUser;
};

/// An attribute of the user that was asked for.
struct AttributeTrace {
    std::string name;
    std::optional<std::string> value; ///< Nothing: the user has no such attribute.
};

/// How one resource of a permission became a value.
struct ValueTrace {
    std::string resource;                    ///< As it was granted.
    std::string value;                       ///< What became of it; empty: it was dropped.
    std::optional<AttributeTrace> attribute; ///< What "%my%" was replaced by.
};

struct ConditionTrace {
    const ConditionRule* rule = nullptr;    ///< One of the field's rule.
    std::vector<std::string> mapped;        ///< Each value of the field by the values function, when there is one.
    std::vector<AttributeTrace> attributes; ///< That tokens asked for.
    std::string text;
    bool userIsTold = true; ///< False: the security manager told nothing of the user.
};

struct FieldTrace {
    std::shared_ptr<const FieldRule> rule;
    bool isHeld = false; ///< Outright: nothing else was asked then.
    bool resourcesAreTold = true;
    std::vector<ValueTrace> values;
    std::vector<ConditionTrace> conditions; ///< Empty: the field hid everything, and was the last.
    std::string clause;                     ///< What the field adds to the filter.
};

/// Owns what it tells, and stays valid without the tracer that made it.
struct Trace {
    std::string repository;
    Request request;
    Answer answer;
    WhatIf tried;                         ///< What was changed for this answer, with what each revocation took away.
    std::optional<std::string> groupName; ///< Nothing: the user is not known.
    std::vector<FieldTrace> fields;       ///< That were looked at.
    std::vector<std::shared_ptr<const FieldRule>> notAsked; ///< That were not: everything was hidden already.
};

/// The values of a field that go into its conditions, as often as they do.
SECM_ANALYSIS_EXPORT std::vector<std::string> ValuesOf(const FieldTrace& field);

/// `values`, each once, in their order.
SECM_ANALYSIS_EXPORT std::vector<std::string> EachOnce(const std::vector<std::string>& values);

} // namespace secm::analysis
