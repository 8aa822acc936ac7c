// One permission: a name, a set of bits that says what of it is meant, and the resource it is for.
#pragma once

#include "platform/Export.h"

#include <cstddef>
#include <string>
#include <string_view>

class PLATFORM_EXPORT serializeable {
public:
    virtual ~serializeable();

    /// This object as bytes that `deserialize` of the same class reads back.
    virtual std::string serialize() const = 0;

    /// Takes over what `serialize` wrote. False, and nothing changed, when `bytes` are not that.
    virtual bool deserialize(std::string_view bytes) = 0;
};

/// A value; copies are independent. Reading one object from several threads is safe.
class PLATFORM_EXPORT PermissionBase : public serializeable {
public:
    /// Copies the texts. `resource` may be null: the permission is for no resource in particular.
    PermissionBase(const char* name, unsigned value, const char* resource, bool conditional)
        : texts(name), nameLength(texts.size()), permissionValue(value), isConditional(conditional)
    {
        if (resource != nullptr) {
            texts.append(1, '\0').append(resource);
        }
    }
    PermissionBase(const PermissionBase&) = default;
    PermissionBase(PermissionBase&&) noexcept = default;
    PermissionBase& operator=(const PermissionBase&) = default;
    PermissionBase& operator=(PermissionBase&&) noexcept = default;
    ~PermissionBase() override = default;

    std::string serialize() const override;
    bool deserialize(std::string_view bytes) override;

    /// The texts stay valid while this object lives unchanged.
    const char* name() const { return texts.c_str(); }
    unsigned value() const { return permissionValue; }
    /// Null when there is none, which is not the same as an empty one.
    const char* resource() const { return texts.size() > nameLength ? texts.c_str() + nameLength + 1 : nullptr; }
    bool IsConditional() const { return isConditional; }

    /// Same name and same resource; value and condition are not compared.
    bool operator==(const PermissionBase& other) const { return texts == other.texts; }

    /// `granted` grants this: it is equal, has every bit of this value, and is unconditional unless this is
    /// conditional.
    bool operator<=(const PermissionBase& granted) const
    {
        return *this == granted && (permissionValue & ~granted.permissionValue) == 0 &&
               (isConditional || !granted.isConditional);
    }

private:
    // The name and, where there is a resource, a NUL and the resource: neither can hold a NUL, so that equal texts are
    // equal permissions. Long lists are of these, so they are small.
    std::string texts;
    std::size_t nameLength;
    unsigned permissionValue;
    bool isConditional;
};
