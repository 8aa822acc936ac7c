#include "analysis/trace/GrantText.h"

#include <charconv>

namespace secm::analysis {

std::optional<PermissionBase> GrantFrom(const std::string& text)
{
    // A name may hold colons: the value is the first number that stands between two, or between one and the end.
    for (std::size_t colon = text.find(':'); colon != std::string::npos; colon = text.find(':', colon + 1)) {
        unsigned value = 0;
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data() + colon + 1, end, value);
        if (colon == 0 || (stop != end && *stop != ':')) {
            continue; // not where a value stands
        }
        if (error == std::errc::result_out_of_range) {
            return std::nullopt; // a mistyped value is no part of the name
        }
        if (error == std::errc()) {
            const char* resource = stop == end ? nullptr : stop + 1;
            return PermissionBase(text.substr(0, colon).c_str(), value, resource, false);
        }
    }
    return std::nullopt;
}

} // namespace secm::analysis
