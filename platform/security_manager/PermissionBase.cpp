#include "platform/security_manager/PermissionBase.h"

#include <charconv>

namespace {

// One field of the serialized form: its length in decimal, a colon, its bytes: any but NUL, which no name or
// resource can hold.
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

serializeable::~serializeable() = default;

PermissionBase::PermissionBase(const char* name, unsigned value, const char* resource, bool conditional)
    : permissionName(name), permissionValue(value), isConditional(conditional)
{
    if (resource != nullptr) {
        resourceName.emplace(resource);
    }
}

PermissionBase::PermissionBase(const PermissionBase&) = default;
PermissionBase::PermissionBase(PermissionBase&&) noexcept = default;
PermissionBase& PermissionBase::operator=(const PermissionBase&) = default;
PermissionBase& PermissionBase::operator=(PermissionBase&&) noexcept = default;
PermissionBase::~PermissionBase() = default;

std::string PermissionBase::serialize() const
{
    std::string bytes;
    AppendField(bytes, permissionName);
    AppendField(bytes, std::to_string(permissionValue));
    AppendField(bytes, isConditional ? "1" : "0");
    if (resourceName) {
        AppendField(bytes, *resourceName);
    }
    return bytes;
}

bool PermissionBase::deserialize(std::string_view bytes)
{
    const auto name = TakeField(bytes);
    const auto valueText = name ? TakeField(bytes) : std::nullopt;
    const auto conditionalText = valueText ? TakeField(bytes) : std::nullopt;
    if (!conditionalText || (*conditionalText != "0" && *conditionalText != "1")) {
        return false;
    }
    unsigned value = 0;
    const char* valueEnd = valueText->data() + valueText->size();
    if (auto [stop, error] = std::from_chars(valueText->data(), valueEnd, value);
        error != std::errc() || stop != valueEnd) {
        return false;
    }
    std::optional<std::string> resource;
    if (!bytes.empty()) {
        const auto field = TakeField(bytes);
        if (!field || !bytes.empty()) {
            return false;
        }
        resource.emplace(*field);
    }
    permissionName = *name;
    permissionValue = value;
    isConditional = *conditionalText == "1";
    resourceName = std::move(resource);
    return true;
}

const char* PermissionBase::name() const
{
    return permissionName.c_str();
}

unsigned PermissionBase::value() const
{
    return permissionValue;
}

const char* PermissionBase::resource() const
{
    return resourceName ? resourceName->c_str() : nullptr;
}

bool PermissionBase::IsConditional() const
{
    return isConditional;
}

bool PermissionBase::operator==(const PermissionBase& other) const
{
    return permissionName == other.permissionName && resourceName == other.resourceName;
}

bool PermissionBase::operator<=(const PermissionBase& granted) const
{
    return *this == granted && (permissionValue & ~granted.permissionValue) == 0 &&
           (isConditional || !granted.isConditional);
}
