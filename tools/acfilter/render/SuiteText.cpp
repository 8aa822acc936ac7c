#include "tools/acfilter/render/SuiteText.h"

#include "tools/acfilter/render/Printable.h"

#include <fmt/format.h>

#include <stdexcept>
#include <string_view>

namespace secm::acfilter {

namespace {

// A basic string of TOML.
std::string TomlText(const std::string& text)
{
    std::string quoted = "\"";
    for (std::string_view rest = text; !rest.empty();) {
        const FirstCharacter first = FirstCharacterOf(rest);
        const std::string_view bytes = rest.substr(0, first.length);
        if (first.length == 1 && static_cast<unsigned char>(bytes.front()) >= 0x80) {
            throw std::runtime_error(fmt::format("'{}' is not UTF-8, so it cannot stand in a suite", Printable(text)));
        }
        quoted += bytes == "\"" || bytes == "\\" ? "\\" + std::string(bytes)
                  : first.isControl              ? fmt::format("\\u{:04X}", first.code)
                                                 : std::string(bytes);
        rest.remove_prefix(first.length);
    }
    return quoted + "\"";
}

std::string ValuesText(const analysis::FieldTrace& field)
{
    if (field.isHeld) {
        return "\"all\"";
    }
    if (field.conditions.empty()) {
        return "\"none\"";
    }
    std::string list;
    for (const std::string& value : analysis::FilteredValues(field)) {
        list += (list.empty() ? "" : ", ") + TomlText(value);
    }
    return "[" + list + "]";
}

} // namespace

std::string SuiteHeadText(const SuiteHead& head)
{
    std::string text = fmt::format("configuration = {}\nrepository = {}\nsecurity = {}\n", TomlText(head.configuration),
                                   TomlText(head.repository), TomlText(head.security));
    if (head.data.empty()) {
        return text;
    }
    constexpr std::string_view command = "command:";
    text += head.data.starts_with(command)
                ? fmt::format("\n[data]\ncommand = {}\n", TomlText(head.data.substr(command.size())))
                : fmt::format("\n[data]\nconnection = {}\ntable = {}\n", TomlText(head.data), TomlText(head.table));
    return text + (head.key.empty() ? "" : fmt::format("key = {}\n", TomlText(head.key)));
}

std::string SuiteTestText(const analysis::Trace& trace, std::optional<std::uint64_t> count)
{
    const std::string user = TomlText(trace.request.userName);
    std::string text = fmt::format("\n[[test]]\nname = {0}\nuser = {0}\n", user);
    if (!trace.request.ipAddress.empty()) {
        text += fmt::format("address = {}\n", TomlText(trace.request.ipAddress));
    }
    text += fmt::format("outcome = \"{}\"\n", NameOf(trace.answer.outcome));
    std::string values;
    for (const analysis::FieldTrace& field : trace.fields) {
        values += fmt::format("{}{} = {}", values.empty() ? "" : ", ", TomlText(field.rule->name), ValuesText(field));
    }
    text += values.empty() ? "" : fmt::format("values = {{ {} }}\n", values);
    return text +
           (count ? fmt::format("count = {}\n", *count) : fmt::format("filter = {}\n", TomlText(trace.answer.filter)));
}

} // namespace secm::acfilter
