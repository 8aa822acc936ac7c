// An explanation for people: one line a fact, aligned, and coloured where it matters.
#include "tools/acfilter/render/Explanation.h"

#include "analysis/trace/Reasons.h"
#include "tools/acfilter/render/Changes.h"
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
    for (const std::string& change : ChangesInWords(tried, true)) {
        out.Line(0, label, change, Colour::careful);
        label = "";
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

std::string GrantText(const SECM_Grant& grant)
{
    const char* resource = grant.permission.resource();
    return fmt::format("{}to {} at position {}", resource != nullptr ? Quoted(resource) + " " : "",
                       grant.isToGroup ? "the group " + Quoted(grant.grantee) : "the user", grant.position);
}

void WriteGrants(TextWriter& out, const analysis::FieldGrants& grants)
{
    if (!grants.grants.empty()) {
        out.Line(3, "granted",
                 out.List(grants.grants.size(), [&](std::size_t n) { return GrantText(grants.grants[n]); }),
                 Colour::faint);
    }
    for (std::size_t index = 0; index < grants.nearMisses.size() && out.TakesAnother(index); ++index) {
        out.Line(3, "near miss", Printable(grants.nearMisses[index]), Colour::careful);
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

void WriteField(TextWriter& out, const analysis::FieldTrace& field, const analysis::FieldGrants& grants,
                std::size_t number)
{
    const std::string title = fmt::format("{}. {}: {}, value {}", number, Printable(field.rule->name),
                                          Printable(field.rule->permissionName), field.rule->permissionValue);
    out.Raw(fmt::format("\n{}\n", out.Coloured(title, field.isHeld ? Colour::faint : Colour::strong)));
    if (field.isHeld) {
        out.Line(3, "held", "outright: the field does not restrict the user", Colour::faint);
        WriteGrants(out, grants);
        return;
    }
    if (!field.resourcesAreTold) {
        out.Line(3, "resources", "the security manager failed to list them: everything is hidden", Colour::alarm);
        return;
    }
    WriteValues(out, field.values);
    WriteGrants(out, grants);
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

std::string ColumnText(const analysis::ColumnValue& column)
{
    return Printable(column.first) + (column.second ? " is " + Quoted(*column.second) : " is NULL");
}

std::string VerdictOf(const TextWriter& out, const analysis::ClauseOnRecord& clause, bool hidesAll)
{
    if (hidesAll && clause.holds && !*clause.holds) {
        return "leaves no value, so the filter hides every record: " + out.Text(clause.clause);
    }
    if (!clause.holds) {
        return fmt::format("cannot stand alone ({}): {}", Printable(clause.error), out.Text(clause.clause));
    }
    const std::string columns =
        out.List(clause.columns.size(), [&](std::size_t n) { return ColumnText(clause.columns[n]); });
    return fmt::format("{}: {}{}", *clause.holds ? "holds" : "does not hold", out.Text(clause.clause),
                       columns.empty() ? "" : "; " + columns);
}

void WriteRecord(TextWriter& out, const analysis::RecordTrace& record, const analysis::Trace& trace)
{
    const bool isVisible = record.isVisible.value_or(false);
    const char* verdict = !record.isVisible ? "the engine refuses the filter: "
                          : isVisible       ? "visible to the user"
                                            : "not visible to the user";
    out.Raw("\n" + out.Coloured("Record " + Quoted(record.key), Colour::strong) + "\n" +
            out.Coloured(verdict + Printable(record.error), isVisible ? Colour::good : Colour::alarm) + "\n");
    for (const analysis::ClauseOnRecord& clause : record.clauses) {
        const bool isAgainst = !clause.holds.value_or(false);
        out.Line(3, clause.field.empty() ? NameOf(trace.answer.outcome) : Printable(clause.field),
                 VerdictOf(out, clause, trace.answer.outcome == analysis::Outcome::hideAll),
                 isAgainst ? Colour::alarm : Colour::none);
    }
}

} // namespace

std::string ExplanationText(const Explanation& explanation, const TextStyle& style)
{
    const analysis::Trace& trace = explanation.trace;
    TextWriter out(style);
    WriteHead(out, trace);
    for (const std::string& note : explanation.notes) {
        out.Line(0, "Note", Printable(note), Colour::careful);
    }
    std::size_t number = 0;
    const auto write = [&](const analysis::FieldTrace& field) {
        WriteField(out, field, explanation.grants.empty() ? analysis::FieldGrants() : explanation.grants.at(number),
                   number + 1);
        ++number;
    };
    std::for_each(trace.fields.begin(), trace.fields.end(), write);
    if (!trace.notAsked.empty()) {
        out.Raw("\nNot asked, because everything is hidden already: " +
                out.List(trace.notAsked.size(), [&](std::size_t n) { return Printable(trace.notAsked[n]->name); }) +
                (trace.later.empty() ? "\n" : "\nFor information, what these fields would be:\n"));
    }
    std::for_each(trace.later.begin(), trace.later.end(), write);
    WriteFilter(out, trace);
    if (explanation.rows) {
        out.Raw("\n" + out.Coloured("Rows", Colour::strong) + "\n" + RowsText(*explanation.rows) + "\n");
    }
    if (explanation.record) {
        WriteRecord(out, *explanation.record, trace);
    }
    return std::move(out.text);
}

} // namespace secm::acfilter
