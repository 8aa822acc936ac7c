// One permission: a name, a set of bits that says what of it is meant, and the resource it is for.
#pragma once

#include "platform/Export.h"

#include <optional>
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
    PermissionBase(const char* name, unsigned value, const char* resource, bool conditional);
    PermissionBase(const PermissionBase&);
    PermissionBase(PermissionBase&&) noexcept;
    PermissionBase& operator=(const PermissionBase&);
    PermissionBase& operator=(PermissionBase&&) noexcept;
    ~PermissionBase() override;

    std::string serialize() const override;
    bool deserialize(std::string_view bytes) override;

    /// The texts stay valid while this object lives unchanged.
    const char* name() const;
    unsigned value() const;
    const char* resource() const; ///< Null when there is none, which is not the same as an empty one.
    bool IsConditional() const;

    /// Same name and same resource; value and condition are not compared.
    bool operator==(const PermissionBase& other) const;

    /// `granted` grants this: it is equal, has every bit of this value, and is unconditional unless this is
    /// conditional.
    bool operator<=(const PermissionBase& granted) const;

private:
    std::string permissionName;
    unsigned permissionValue;
    std::optional<std::string> resourceName;
    bool isConditional;
};
