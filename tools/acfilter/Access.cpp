#include "tools/acfilter/Access.h"

#include "tools/acfilter/Explanation.h"

#include <set>
#include <string_view>

namespace {

AccessCell CellOf(const FieldAccount& field)
{
    if (field.isHeld) {
        return {FieldAccess::all, {}, false};
    }
    if (field.conditions.empty()) {
        return {FieldAccess::none, {}, false};
    }
    return {FieldAccess::values, EachOnce(ValuesOf(field)), RestrictsNothing(field)};
}

} // namespace

const char* NameOf(FieldAccess access)
{
    switch (access) {
    case FieldAccess::all:
        return "all";
    case FieldAccess::none:
        return "none";
    case FieldAccess::values:
        return "values";
    default:
        return "not asked";
    }
}

AccessRow AccessOf(const Account& account, std::size_t fieldCount)
{
    AccessRow row{account.request.userName, account.groupName, account.answer.outcome, {}, account.answer.filter};
    for (const FieldAccount& field : account.fields) {
        row.cells.push_back(CellOf(field));
    }
    row.cells.resize(fieldCount);
    return row;
}

std::vector<std::string> ValuesOf(const FieldAccount& field)
{
    std::vector<std::string> values;
    for (const ValueAccount& way : field.values) {
        if (!way.value.empty()) {
            values.push_back(way.value);
        }
    }
    return values;
}

std::vector<std::string> EachOnce(const std::vector<std::string>& values)
{
    std::set<std::string_view> known;
    std::vector<std::string> once;
    for (const std::string& value : values) {
        if (known.insert(value).second) {
            once.push_back(value);
        }
    }
    return once;
}
