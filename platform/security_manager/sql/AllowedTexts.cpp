#include "platform/security_manager/sql/AllowedTexts.h"

#include "platform/security_manager/PermissionBase.h"
#include "platform/security_manager/SECM_Constants.h"

#include <fmt/format.h>
#include <re2/re2.h>

#include <cstdlib>
#include <stdexcept>

namespace secm::platform {

AllowedTexts::AllowedTexts(const char* environmentVariable) : variable(environmentVariable)
{
    const char* text = std::getenv(variable);
    if (text == nullptr) {
        return;
    }
    if (*text == '\0') {
        throw std::runtime_error(
            fmt::format("{} is empty; write a regular expression, or unset it to allow all", variable));
    }
    expression = std::make_unique<re2::RE2>(text, re2::RE2::Quiet);
    if (!expression->ok()) {
        throw std::runtime_error(fmt::format("{} is no regular expression: {}", variable, expression->error()));
    }
}

AllowedTexts::~AllowedTexts() = default;

bool AllowedTexts::Allows(const std::string& text) const
{
    return !expression || re2::RE2::FullMatch(text, *expression);
}

void AllowedTexts::Refuse(const std::string& place) const
{
    throw std::runtime_error(fmt::format("{} holds a text that {} does not allow", place, variable));
}

bool AllowsResourceOf(const AllowedTexts& allowed, const PermissionBase& permission)
{
    const char* resource = permission.resource();
    return resource == nullptr || resource == ownValue || allowed.Allows(resource);
}

} // namespace secm::platform
