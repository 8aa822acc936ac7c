// How one answer came about, in the order in which the module composed it. The types here own their texts; copies are
// independent, and any thread may call the functions.
#pragma once

#include "analysis/Export.h"
#include "analysis/definitions/Rules.h"
#include "analysis/trace/WhatIf.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace secm::analysis {

/// The kind of an answer. The text of a filter alone does not tell it.
enum class Outcome { unrestricted, restricted, hideAll, unknownUser };

/// "unrestricted", "restricted", "hide-all" or, for a user who is not known, "default".
SECM_ANALYSIS_EXPORT const char* NameOf(Outcome outcome);

/// What a host asks the module.
struct Request {
    std::string userName;
    std::string ipAddress;
    bool withoutLogin = false; ///< Asked by name, through the administration interface; `ipAddress` is not used then.
};

/// What the module answers.
struct Answer {
    std::string filter;
    Outcome outcome = Outcome::unknownUser;
};

/// An attribute of the user that a condition or my_field asked for.
struct AttributeTrace {
    std::string name;
    std::optional<std::string> value; ///< No value: the user has no such attribute.
};

/// How one resource of a permission became a value.
struct ValueTrace {
    std::string resource;                    ///< As it was granted.
    std::string value;                       ///< What the conditions get for it; empty: it was dropped.
    std::optional<AttributeTrace> attribute; ///< That replaced "%my%".
};

/// How one condition of a field was filled.
struct ConditionTrace {
    const ConditionRule* rule = nullptr;    ///< In the rule of the FieldTrace, which owns it.
    std::vector<std::string> mapped;        ///< Each value as the values function gave it; empty without a function.
    std::vector<AttributeTrace> attributes; ///< That the tokens stand for, in the order in which they were asked for.
    std::string text;                       ///< The filled template; empty: the condition adds nothing.
    bool userIsTold = true;                 ///< False: the security manager gave no details of the user.
};

/// What one field did to the filter.
struct FieldTrace {
    std::shared_ptr<const FieldRule> rule;
    bool isHeld = false;            ///< The permission is held outright: the field does not restrict the user.
    bool resourcesAreTold = true;   ///< False: the security manager could not give the resources.
    std::vector<ValueTrace> values; ///< One for each resource, in the order of granting.
    /// Empty for a field that is held outright, and for one that hides every record, after which no field is asked.
    std::vector<ConditionTrace> conditions;
    std::string clause; ///< What the field adds to the filter; may be empty.
};

/// How one request was answered. Stays valid without the tracer that made it.
struct Trace {
    std::string repository;
    Request request;
    Answer answer;
    WhatIf tried; ///< The changes that were tried, with the number of permissions that each revocation took away.
    std::optional<std::string> groupName; ///< No value: the user is not known, or there are no details of the user.
    std::vector<FieldTrace> fields;       ///< Those that the module asked about, in the order of the rules.
    std::vector<std::shared_ptr<const FieldRule>> notAsked; ///< The later ones, when one hid every record.
    /// What the fields of `notAsked` would be for this user; only Tracer::ExplainAll fills it. They are no part of the
    /// answer.
    std::vector<FieldTrace> later;
};

/// The values that go into the conditions of the field: those that were not dropped, in their order, with duplicates.
SECM_ANALYSIS_EXPORT std::vector<std::string> ValuesOf(const FieldTrace& field);

/// `values` without duplicates, in the order of their first occurrences.
SECM_ANALYSIS_EXPORT std::vector<std::string> EachOnce(const std::vector<std::string>& values);

} // namespace secm::analysis
