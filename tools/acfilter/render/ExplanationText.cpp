// An explanation for people: one line a fact, aligned, and coloured where it matters.
#include "tools/acfilter/render/Explanation.h"

#include "analysis/trace/Reasons.h"
#include "tools/acfilter/render/Printable.h"
#include "tools/acfilter/render/TextLayout.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>

namespace secm::acfilter {

namespace {

enum class Colour : int { none = 0, strong = 1, faint = 2, alarm = 31, good = 32, careful = 33 };

// The attribute's value as text, or that there is none.
std::string ValueOf(const analysis::AttributeTrace& attribute)
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
                   ? fmt::format("\033[{}m{}\033[0m", static_cast<int>(colour), content)
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

void WriteTried(TextWriter& out, const analysis::WhatIf& tried)
{
    const char* label = "What if";
    const auto write = [&](const std::string& change) {
        out.Line(0, label, change, Colour::careful);
        label = "";
    };
    for (const auto& [name, value] : tried.attributes) {
        write(fmt::format("the user had the attribute {} = {}", Printable(name), Quoted(value)));
    }
    for (const auto& revocation : tried.revocations) {
        write(fmt::format("the user had not {} {}", Quoted(revocation.permission),
                          revocation.revoked == 0 ? "(nor has it today: nothing changes by this)"
                                                  : fmt::format("({} of today's grants)", revocation.revoked)));
    }
    for (const PermissionBase& grant : tried.grants) {
        write(fmt::format("the user had {}, value {}, {}", Quoted(grant.name()), grant.value(),
                          grant.resource() != nullptr ? "for the resource " + Quoted(grant.resource()) : "outright"));
    }
    if (*label == '\0') {
        out.Line(0, "", "This is not what the user sees today, and nothing was changed.", Colour::careful);
    }
}

void WriteHead(TextWriter& out, const analysis::Trace& trace)
{
    const analysis::Outcome outcome = trace.answer.outcome;
    out.Line(0, "User", Quoted(trace.request.userName), Colour::strong);
    if (trace.groupName) {
        out.Line(0, "Group", trace.groupName->empty() ? "(none)" : Quoted(*trace.groupName));
    }
    out.Line(0, "Asked",
             trace.request.withoutLogin ? "by name, without a log-in"
                                        : "by a log-in from the address " + Quoted(trace.request.ipAddress));
    out.Line(0, "Repository", Quoted(trace.repository));
    WriteTried(out, trace.tried);
    out.Line(0, "Outcome", NameOf(outcome),
             outcome == analysis::Outcome::hideAll
                 ? Colour::alarm
                 : (outcome == analysis::Outcome::restricted ? Colour::good : Colour::careful));
    if (const std::string why = analysis::WhyNotComposed(trace); !why.empty()) {
        out.Line(0, "Because", Printable(why));
    }
}

// Where the value comes from, when it is not the resource itself.
std::string OriginOf(const analysis::ValueTrace& value)
{
    if (!value.attribute) {
        return " is empty: dropped";
    }
    return fmt::format(" stands for the attribute {}: {}{}", Printable(value.attribute->name),
                       ValueOf(*value.attribute), value.value.empty() ? ", dropped" : "");
}

void WriteValues(TextWriter& out, const std::vector<analysis::ValueTrace>& values)
{
    out.Line(3, "resources", values.empty() ? "none" : out.List(values.size(), [&](std::size_t n) {
        return Quoted(values[n].resource);
    }));
    std::size_t shown = 0;
    for (const analysis::ValueTrace& value : values) {
        if ((value.attribute || value.value.empty()) && out.TakesAnother(shown++)) {
            out.Line(3, "", Quoted(value.resource) + OriginOf(value));
        }
    }
}

void WriteMapped(TextWriter& out, const analysis::FieldTrace& field, const analysis::ConditionTrace& condition)
{
    const analysis::ConditionRule& rule = *condition.rule;
    if (rule.function.empty()) {
        return;
    }
    const std::string name =
        Printable(rule.function) +
        (rule.functionConfiguration.empty() ? "" : "(" + Printable(rule.functionConfiguration) + ")");
    if (!rule.isMapped) {
        out.Line(5, "mapped", fmt::format("by nothing: there is no values function '{}'", name), Colour::alarm);
        return;
    }
    const std::vector<std::string> values = analysis::ValuesOf(field);
    const auto pair = [&](std::size_t n) {
        return fmt::format("{} to {}", Quoted(values[n]), Quoted(condition.mapped[n]));
    };
    out.Line(5, "mapped",
             fmt::format("by {}: {}", name, out.List(std::min(values.size(), condition.mapped.size()), pair)));
}

void WriteCondition(TextWriter& out, const analysis::FieldTrace& field, const analysis::ConditionTrace& condition)
{
    out.Line(3, "condition" + std::to_string(condition.rule->number), Printable(condition.rule->text));
    WriteMapped(out, field, condition);
    for (const analysis::AttributeTrace& attribute : condition.attributes) {
        out.Line(5, "token", fmt::format("${}$ stands for {}", Printable(attribute.name), ValueOf(attribute)));
    }
    const std::string why = analysis::WhyEmpty(condition);
    out.Line(5, "text", why.empty() ? out.Text(condition.text) : "none: " + Printable(why),
             why.empty() ? Colour::none : Colour::careful);
}

void WriteField(TextWriter& out, const analysis::FieldTrace& field, std::size_t number)
{
    const std::string title = fmt::format("{}. {}: {}, value {}", number, Printable(field.rule->name),
                                          Printable(field.rule->permissionName), field.rule->permissionValue);
    out.Raw(fmt::format("\n{}\n", out.Coloured(title, field.isHeld ? Colour::faint : Colour::strong)));
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
    for (const analysis::ConditionTrace& condition : field.conditions) {
        WriteCondition(out, field, condition);
    }
    if (analysis::RestrictsNothing(field)) {
        out.Line(3, "clause", "none: this field does not restrict the user, although it is not held outright",
                 Colour::alarm);
    } else {
        out.Line(3, "clause", out.Text(field.clause));
    }
}

void WriteFilter(TextWriter& out, const analysis::Trace& trace)
{
    const std::string& filter = trace.answer.filter;
    out.Raw("\n" + out.Coloured(trace.tried.IsEmpty() ? "Filter" : "Filter, what if", Colour::strong) + "\n");
    if (filter.empty()) {
        out.Raw(out.Coloured(NoRestriction(), Colour::alarm) + "\n");
    } else {
        // Byte for byte, unless a terminal would obey its control characters.
        out.Raw((out.style.isForTerminal ? Printable(filter) : filter) + "\n");
    }
}

} // namespace

std::string ExplanationText(const analysis::Trace& trace, const TextStyle& style)
{
    TextWriter out(style);
    WriteHead(out, trace);
    const std::vector<analysis::FieldTrace>& fields = trace.fields;
    for (std::size_t index = 0; index < fields.size(); ++index) {
        WriteField(out, fields[index], index + 1);
    }
    if (!trace.notAsked.empty()) {
        out.Raw("\nNot looked at, since everything is hidden already: " +
                out.List(trace.notAsked.size(), [&](std::size_t n) { return Printable(trace.notAsked[n]->name); }) +
                "\n");
    }
    WriteFilter(out, trace);
    return std::move(out.text);
}

} // namespace secm::acfilter
