// How one answer came about, in the order in which it came.
#pragma once

#include "tools/acfilter/WatchingManager.h"

#include <optional>
#include <string>
#include <vector>

struct AttributeAccount {
    std::string name;
    std::optional<std::string> value; ///< Nothing: the user has no such attribute.
};

/// One resource of a permission on its way to a value.
struct ValueAccount {
    std::string resource;                      ///< As it was granted.
    std::string value;                         ///< What became of it; empty: it was dropped.
    std::optional<AttributeAccount> attribute; ///< What "%my%" was replaced by.
};

struct ConditionAccount {
    const ConditionDefinition* definition;    ///< Valid while the manager lives.
    std::vector<std::string> mapped;          ///< Each value of the field by the values function, when there is one.
    std::vector<AttributeAccount> attributes; ///< That tokens asked for.
    std::string text;
    bool userIsTold = true; ///< False: the security manager told nothing of the user.
};

struct FieldAccount {
    const FieldDefinition* definition; ///< Valid while the manager lives.
    bool isHeld;                       ///< Outright: nothing else was asked then.
    bool resourcesAreTold = true;
    std::vector<ValueAccount> values;
    std::vector<ConditionAccount> conditions; ///< Empty: the field hid everything, and was the last.
    std::string clause;
};

struct Account {
    Request request;
    Answer answer;
    std::optional<std::string> groupName; ///< Nothing: the user is not known.
    std::vector<FieldAccount> fields;
};
