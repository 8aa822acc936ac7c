// What administrators allow in texts that are written into filters, where one quote too many would change the query.
#pragma once

#include <memory>
#include <string>

class PermissionBase;

namespace re2 {
class RE2;
}

namespace secm::platform {

/// The texts that a regular expression matches from end to end; all texts when there is no expression. Any thread may
/// read.
class AllowedTexts {
public:
    /// Takes the expression from the environment variable of this name. Throws std::runtime_error when it is wrong.
    explicit AllowedTexts(const char* environmentVariable);
    ~AllowedTexts();

    bool Allows(const std::string& text) const;

    /// Throws std::runtime_error, which names `place` and the variable.
    [[noreturn]] void Refuse(const std::string& place) const;

private:
    const char* variable;
    std::unique_ptr<re2::RE2> expression;
};

/// The environment variables that say what grants and attributes may hold.
inline constexpr const char* allowedResourcesVariable = "SECM_ALLOWED_RESOURCES";
inline constexpr const char* allowedAttributesVariable = "SECM_ALLOWED_ATTRIBUTES";

/// Whether `allowed` allows the permission's resource. Always true without a resource, and for the user's own value:
/// that is an attribute, for which there is another variable.
bool AllowsResourceOf(const AllowedTexts& allowed, const PermissionBase& permission);

} // namespace secm::platform
