#include "platform/security_manager/sql/AllowedTexts.h"

#include <re2/re2.h>

#include <cstdlib>
#include <stdexcept>

AllowedTexts::AllowedTexts(const char* environmentVariable) : variable(environmentVariable)
{
    const char* text = std::getenv(variable);
    if (text == nullptr) {
        return;
    }
    if (*text == '\0') {
        throw std::runtime_error(std::string(variable) +
                                 " is empty; write a regular expression, or unset it to allow all");
    }
    expression = std::make_unique<re2::RE2>(text, re2::RE2::Quiet);
    if (!expression->ok()) {
        throw std::runtime_error(std::string(variable) + " is no regular expression: " + expression->error());
    }
}

AllowedTexts::~AllowedTexts() = default;

void AllowedTexts::Require(const std::string& text, const RowPlace& place) const
{
    if (expression && !re2::RE2::FullMatch(text, *expression)) {
        throw std::runtime_error(place.Text() + " holds a text that " + variable + " does not allow");
    }
}
