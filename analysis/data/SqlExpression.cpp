#include "analysis/data/SqlExpression.h"

#include "analysis/check/QueryText.h"
#include "analysis/check/WordCharacter.h"

#include <algorithm>
#include <array>
#include <string>

namespace secm::analysis {

bool IsExpressionOnly(std::string_view filter)
{
    // Some strings of PostgreSQL end behind another quote when they contain a backslash.
    if (filter.find('\\') != std::string_view::npos) {
        return false;
    }
    int depth = 0;
    for (std::size_t at = 0; at < filter.size(); ++at) {
        const char character = filter[at];
        if (character == '\'' || character == '"') {
            at = filter.find(character, at + 1); // the second of a doubled quote begins the next text
            if (at == std::string_view::npos) {
                return false;
            }
        } else if (IsWordCharacter(character)) {
            std::size_t end = at;
            while (end < filter.size() && IsWordCharacter(filter[end])) {
                ++end;
            }
            // As names they do no harm.
            constexpr std::array<std::string_view, 12> clauses = {"group",     "having", "order",  "limit",
                                                                  "union",     "except", "window", "intersect",
                                                                  "returning", "fetch",  "offset", "for"};
            const std::string word = LowerCase(filter.substr(at, end - at));
            if (std::find(clauses.begin(), clauses.end(), word) != clauses.end()) {
                return false;
            }
            at = end - 1;
        } else if (character == '(') {
            ++depth;
        } else if (character == ')') {
            if (--depth < 0) {
                return false;
            }
        } else if (std::string_view("=<>!,.+*% \n").find(character) == std::string_view::npos) {
            return false; // the beginning of a comment, a semicolon, another quote ...
        }
    }
    return depth == 0;
}

} // namespace secm::analysis
