// What can be told of a SQL condition without parsing it.
#pragma once

#include <string_view>

namespace secm::analysis {

/// Whether the text, where an engine takes it behind WHERE, is an expression and nothing more, so that it means the
/// same with and without parentheses. False where that is not certain.
bool IsExpressionOnly(std::string_view filter);

} // namespace secm::analysis
