#include "platform/security_manager/PermissionBase.h"

#include <charconv>
#include <cstddef>
#include <optional>
#include <system_error>

namespace secm::platform {
namespace {

// A field of the serialized form is its length in decimal, a colon and its bytes. The bytes hold no NUL, because no
// name or resource does.
void AppendField(std::string& bytes, std::string_view field)
{
    bytes += std::to_string(field.size());
    bytes += ':';
    bytes += field;
}

std::optional<std::string_view> TakeField(std::string_view& bytes)
{
    std::size_t length = 0;
    const char* end = bytes.data() + bytes.size();
    auto [stop, error] = std::from_chars(bytes.data(), end, length);
    if (error != std::errc() || stop == end || *stop != ':' || length > static_cast<std::size_t>(end - stop - 1)) {
        return std::nullopt;
    }
    const std::string_view field(stop + 1, length);
    bytes.remove_prefix(static_cast<std::size_t>(field.data() + length - bytes.data()));
    return field.find('\0') == std::string_view::npos ? std::optional(field) : std::nullopt;
}

} // namespace
} // namespace secm::platform

using secm::platform::AppendField;
using secm::platform::TakeField;

serializeable::~serializeable() = default;

std::string PermissionBase::serialize() const
{
    std::string bytes;
    AppendField(bytes, name());
    AppendField(bytes, std::to_string(permissionValue));
    AppendField(bytes, isConditional ? "1" : "0");
    if (resource() != nullptr) {
        AppendField(bytes, resource());
    }
    return bytes;
}

bool PermissionBase::deserialize(std::string_view bytes)
{
    const auto nameText = TakeField(bytes);
    const auto valueText = nameText ? TakeField(bytes) : std::nullopt;
    const auto conditionalText = valueText ? TakeField(bytes) : std::nullopt;
    if (!conditionalText || (*conditionalText != "0" && *conditionalText != "1")) {
        return false;
    }
    unsigned number = 0;
    const char* valueEnd = valueText->data() + valueText->size();
    if (auto [stop, error] = std::from_chars(valueText->data(), valueEnd, number);
        error != std::errc() || stop != valueEnd) {
        return false;
    }
    std::optional<std::string> resourceText;
    if (!bytes.empty()) {
        const auto field = TakeField(bytes);
        if (!field || !bytes.empty()) {
            return false;
        }
        resourceText.emplace(*field);
    }
    *this = PermissionBase(std::string(*nameText).c_str(), number, resourceText ? resourceText->c_str() : nullptr,
                           *conditionalText == "1");
    return true;
}
