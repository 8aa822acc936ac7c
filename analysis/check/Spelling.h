// Finds the name that a misspelt one was probably meant to be.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace secm::analysis {

/// How many bytes have to be changed, added, removed or swapped with the next to make one text of the other. Case does
/// not count.
std::size_t Distance(std::string_view left, std::string_view right);

/// The first of the nearest `names` at a distance of two or less, `name` itself aside; empty when there is none.
std::string Nearest(const std::string& name, const std::vector<std::string>& names);

/// A remedy: `otherwise`, after "did you mean 'NAME'? else " when a name is near.
std::string DidYouMean(const std::string& name, const std::vector<std::string>& names, const std::string& otherwise);

} // namespace secm::analysis
