// An explanation as people read it: one line a fact, aligned, what matters in colour.
#include "tools/acfilter/Explanation.h"

#include "tools/acfilter/Access.h"
#include "tools/acfilter/Printable.h"
#include "tools/acfilter/Shortening.h"

#include <functional>

namespace {

enum class Colour : int { none = 0, strong = 1, faint = 2, alarm = 31, good = 32, careful = 33 };

// An attribute as text: its value, or that there is none.
std::string ValueOf(const AttributeAccount& attribute)
{
    return attribute.value ? Quoted(*attribute.value) : "(the user has none)";
}

class TextWriter {
public:
    explicit TextWriter(const TextStyle& textStyle) : style(textStyle) {}

    void Line(std::size_t indent, std::string_view label, const std::string& content, Colour colour = Colour::none)
    {
        text += LabelledLine(indent, label, Coloured(content, colour));
    }

    void Raw(const std::string& content) { text += content; }

    std::string Coloured(const std::string& content, Colour colour) const
    {
        return style.hasColours && colour != Colour::none
                   ? "\033[" + std::to_string(static_cast<int>(colour)) + "m" + content + "\033[0m"
                   : content;
    }

    std::string List(std::size_t count, const std::function<std::string(std::size_t)>& item) const
    {
        return ShortList(count, item, style.isFull);
    }

    bool TakesAnother(std::size_t already) const { return style.isFull || already < shownItems; }

    std::string Text(const std::string& content) const { return ShortText(content, style.isFull); }

    const TextStyle style;
    std::string text;
};

void WriteTried(TextWriter& out, const WhatIf& tried)
{
    const char* label = "What if";
    const auto write = [&](const std::string& change) {
        out.Line(0, label, change, Colour::careful);
        label = "";
    };
    for (const auto& [name, value] : tried.attributes) {
        write("the user had the attribute " + Printable(name) + " = " + Quoted(value));
    }
    for (const auto& revocation : tried.revocations) {
        write("the user had not " + Quoted(revocation.permission) +
              (revocation.revoked == 0 ? " (nor has it today: nothing changes by this)"
                                       : " (" + std::to_string(revocation.revoked) + " of today's grants)"));
    }
    for (const PermissionBase& grant : tried.grants) {
        write("the user had " + Quoted(grant.name()) + ", value " + std::to_string(grant.value()) +
              (grant.resource() != nullptr ? ", for the resource " + Quoted(grant.resource()) : ", outright"));
    }
    if (*label == '\0') {
        out.Line(0, "", "This is not what the user sees today, and nothing was changed.", Colour::careful);
    }
}

void WriteHead(TextWriter& out, const Explanation& explanation)
{
    const Account& account = explanation.account;
    const Outcome outcome = account.answer.outcome;
    out.Line(0, "User", Quoted(account.request.userName), Colour::strong);
    if (account.groupName) {
        out.Line(0, "Group", account.groupName->empty() ? "(none)" : Quoted(*account.groupName));
    }
    out.Line(0, "Asked",
             account.request.withoutLogin ? "by name, without a log-in"
                                          : "by a log-in from the address " + Quoted(account.request.ipAddress));
    out.Line(0, "Repository", Quoted(explanation.repository));
    WriteTried(out, explanation.tried);
    out.Line(0, "Outcome", NameOf(outcome),
             outcome == Outcome::hideAll ? Colour::alarm
                                         : (outcome == Outcome::restricted ? Colour::good : Colour::careful));
    if (const std::string why = WhyNotComposed(explanation); !why.empty()) {
        out.Line(0, "Because", Printable(why));
    }
}

// What became of a resource that is no value as it was granted.
std::string WayOf(const ValueAccount& way)
{
    if (!way.attribute) {
        return " is empty: dropped";
    }
    return " stands for the attribute " + Printable(way.attribute->name) + ": " + ValueOf(*way.attribute) +
           (way.value.empty() ? ", dropped" : "");
}

void WriteValues(TextWriter& out, const std::vector<ValueAccount>& values)
{
    out.Line(3, "resources", values.empty() ? "none" : out.List(values.size(), [&](std::size_t n) {
        return Quoted(values[n].resource);
    }));
    std::size_t told = 0;
    for (const ValueAccount& way : values) {
        if ((way.attribute || way.value.empty()) && out.TakesAnother(told++)) {
            out.Line(3, "", Quoted(way.resource) + WayOf(way));
        }
    }
}

void WriteMapped(TextWriter& out, const FieldAccount& field, const ConditionAccount& condition,
                 const FunctionName& function)
{
    if (function.name.empty()) {
        return;
    }
    const std::string name = Printable(function.name) +
                             (function.configuration.empty() ? "" : "(" + Printable(function.configuration) + ")");
    if (!condition.definition->valuesFunction) {
        out.Line(5, "mapped", "by nothing: there is no values function '" + name + "'", Colour::alarm);
        return;
    }
    const std::vector<std::string> values = ValuesOf(field);
    out.Line(5, "mapped",
             "by " + name + ": " + out.List(std::min(values.size(), condition.mapped.size()), [&](std::size_t n) {
                 return Quoted(values[n]) + " to " + Quoted(condition.mapped[n]);
             }));
}

void WriteCondition(TextWriter& out, const FieldAccount& field, std::size_t index, const FunctionName& function)
{
    const ConditionAccount& condition = field.conditions[index];
    out.Line(3, "condition" + std::to_string(index + 1), Printable(condition.definition->conditionText));
    WriteMapped(out, field, condition, function);
    for (const AttributeAccount& attribute : condition.attributes) {
        out.Line(5, "token", "$" + Printable(attribute.name) + "$ stands for " + ValueOf(attribute));
    }
    const std::string why = WhyEmpty(condition);
    out.Line(5, "text", why.empty() ? out.Text(condition.text) : "none: " + Printable(why),
             why.empty() ? Colour::none : Colour::careful);
}

void WriteField(TextWriter& out, const FieldAccount& field, const DefinitionNames& names, std::size_t number)
{
    const std::string title = std::to_string(number) + ". " + Printable(names.field) + ": " +
                              Printable(field.definition->permissionName) + ", value " +
                              std::to_string(field.definition->permissionValue);
    out.Raw("\n" + out.Coloured(title, field.isHeld ? Colour::faint : Colour::strong) + "\n");
    if (field.isHeld) {
        out.Line(3, "held", "outright: the field does not restrict the user", Colour::faint);
        return;
    }
    if (!field.resourcesAreTold) {
        out.Line(3, "resources", "could not be told: everything is hidden", Colour::alarm);
        return;
    }
    WriteValues(out, field.values);
    if (field.conditions.empty()) {
        out.Line(3, "values", "none: everything is hidden", Colour::alarm);
        return;
    }
    for (std::size_t index = 0; index < field.conditions.size(); ++index) {
        WriteCondition(out, field, index, names.functions.at(index));
    }
    if (RestrictsNothing(field)) {
        out.Line(3, "clause", "none: this field does not restrict the user, although it is not held outright",
                 Colour::alarm);
    } else {
        out.Line(3, "clause", out.Text(field.clause));
    }
}

void WriteFilter(TextWriter& out, const Explanation& explanation)
{
    const std::string& filter = explanation.account.answer.filter;
    out.Raw("\n" + out.Coloured(explanation.tried.IsEmpty() ? "Filter" : "Filter, what if", Colour::strong) + "\n");
    if (filter.empty()) {
        out.Raw(out.Coloured(std::string("(") + noRestriction + ")", Colour::alarm) + "\n");
    } else {
        // Byte for byte, unless that would give orders to a terminal.
        out.Raw((out.style.isForTerminal ? Printable(filter) : filter) + "\n");
    }
}

} // namespace

std::string ExplanationText(const Explanation& explanation, const TextStyle& style)
{
    TextWriter out(style);
    WriteHead(out, explanation);
    const std::vector<FieldAccount>& fields = explanation.account.fields;
    for (std::size_t index = 0; index < fields.size(); ++index) {
        WriteField(out, fields[index], explanation.names.at(index), index + 1);
    }
    if (explanation.account.answer.outcome == Outcome::hideAll && fields.size() < explanation.names.size()) {
        const std::size_t count = explanation.names.size() - fields.size();
        out.Raw("\nNot looked at, since everything is hidden already: " + out.List(count, [&](std::size_t n) {
            return Printable(explanation.names[fields.size() + n].field);
        }) + "\n");
    }
    WriteFilter(out, explanation);
    return std::move(out.text);
}
