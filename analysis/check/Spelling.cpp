#include "analysis/check/Spelling.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace secm::analysis {

namespace {

constexpr std::size_t farthest = 2;

int Lower(char character)
{
    return std::tolower(static_cast<unsigned char>(character));
}

} // namespace

std::size_t Distance(std::string_view left, std::string_view right)
{
    const auto isSame = [&](std::size_t ofLeft, std::size_t ofRight) {
        return Lower(left[ofLeft]) == Lower(right[ofRight]);
    };
    // The distances from the first `row` + 1, `row` and `row` - 1 bytes of `left` to each beginning of `right`.
    std::vector<std::size_t> here(right.size() + 1);
    std::iota(here.begin(), here.end(), std::size_t{0});
    std::vector<std::size_t> before;
    std::vector<std::size_t> twoBefore;
    for (std::size_t row = 0; row < left.size(); ++row) {
        twoBefore = std::exchange(before, here);
        here[0] = row + 1;
        for (std::size_t at = 0; at < right.size(); ++at) {
            here[at + 1] = std::min({before[at] + (isSame(row, at) ? 0 : 1), before[at + 1] + 1, here[at] + 1});
            if (row > 0 && at > 0 && isSame(row, at - 1) && isSame(row - 1, at)) {
                here[at + 1] = std::min(here[at + 1], twoBefore[at - 1] + 1);
            }
        }
    }
    return here.back();
}

std::string Nearest(const std::string& name, const std::vector<std::string>& names)
{
    std::string nearest;
    // Not as far as the whole name is long: the two would have nothing in common.
    std::size_t limit = std::min(farthest + 1, name.size());
    for (const std::string& other : names) {
        const std::size_t lengths = std::max(name.size(), other.size()) - std::min(name.size(), other.size());
        if (lengths >= limit) {
            continue; // the distance is at least that
        }
        const std::size_t distance = Distance(name, other);
        if (distance < limit && other != name) {
            limit = distance;
            nearest = other;
        }
    }
    return nearest;
}

std::string DidYouMean(const std::string& name, const std::vector<std::string>& names, const std::string& otherwise)
{
    const std::string nearest = Nearest(name, names);
    return nearest.empty() ? otherwise : fmt::format("did you mean '{}'? else {}", nearest, otherwise);
}

} // namespace secm::analysis
