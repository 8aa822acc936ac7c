#include "tools/acfilter/Spelling.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace {

constexpr std::size_t farthest = 2;

int Lower(char character)
{
    return std::tolower(static_cast<unsigned char>(character));
}

} // namespace

std::size_t Distance(std::string_view left, std::string_view right)
{
    // Of what has been read of `left` to each beginning of `right`.
    std::vector<std::size_t> distances(right.size() + 1);
    std::iota(distances.begin(), distances.end(), std::size_t{0});
    for (const char character : left) {
        std::size_t diagonal = distances.front()++;
        for (std::size_t at = 0; at < right.size(); ++at) {
            const std::size_t changed = diagonal + (Lower(character) == Lower(right[at]) ? 0 : 1);
            diagonal = distances[at + 1];
            distances[at + 1] = std::min({changed, diagonal + 1, distances[at] + 1});
        }
    }
    return distances.back();
}

std::string Nearest(const std::string& name, const std::vector<std::string>& names)
{
    std::string nearest;
    // A name of which nothing is left has nothing in common.
    std::size_t limit = std::min(farthest + 1, name.size());
    for (const std::string& candidate : names) {
        const std::size_t distance = Distance(name, candidate);
        if (distance < limit && candidate != name) {
            limit = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string DidYouMean(const std::string& name, const std::vector<std::string>& names, const std::string& otherwise)
{
    const std::string nearest = Nearest(name, names);
    return nearest.empty() ? otherwise : "did you mean '" + nearest + "'? else " + otherwise;
}
