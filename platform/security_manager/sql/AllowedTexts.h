// What administrators may demand of texts that end up in filters, where a quote too many would change the query.
#pragma once

#include "platform/security_manager/sql/DatabaseAccess.h"

#include <memory>
#include <string>

namespace re2 {
class RE2;
}

/// Those that a regular expression matches from end to end; all while there is none. Reading from several threads is
/// safe.
class AllowedTexts {
public:
    /// Takes the expression from the environment variable of this name. Throws std::runtime_error when it is wrong.
    explicit AllowedTexts(const char* environmentVariable);
    ~AllowedTexts();

    /// Throws std::runtime_error, which names `place` and the variable, when `text` is not among them.
    void Require(const std::string& text, const RowPlace& place) const;

private:
    const char* variable;
    std::unique_ptr<re2::RE2> expression;
};
