// One permission: a name, a value whose bits are separate rights, and the resource that it is for.
#pragma once

#include "platform/Export.h"

#include <cstddef>
#include <string>
#include <string_view>

class PLATFORM_EXPORT serializeable {
public:
    virtual ~serializeable();

    /// This object as bytes for `deserialize` of the same class.
    virtual std::string serialize() const = 0;

    /// Takes the state that `serialize` wrote. False, and this object is unchanged, when `bytes` are anything else.
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
    /// Null when there is none; an empty resource is something else.
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
    // The name and, when there is a resource, a NUL and the resource. Neither can hold a NUL, so permissions are equal
    // when these texts are. One text keeps the object small, for long lists.
    std::string texts;
    std::size_t nameLength;
    unsigned permissionValue;
    bool isConditional;
};
