#include "analysis/trace/Trace.h"

#include <set>
#include <string_view>

namespace secm::analysis {

const char* NameOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::unrestricted:
        return "unrestricted";
    case Outcome::restricted:
        return "restricted";
    case Outcome::hideAll:
        return "hide-all";
    default:
        return "default";
    }
}

std::vector<std::string> ValuesOf(const FieldTrace& field)
{
    std::vector<std::string> values;
    for (const ValueTrace& value : field.values) {
        if (!value.value.empty()) {
            values.push_back(value.value);
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

} // namespace secm::analysis
