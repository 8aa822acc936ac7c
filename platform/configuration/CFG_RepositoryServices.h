// The configuration repository as the module sees it: a tree of named nodes with named values.
// A path is a sequence of names joined by "\"; the empty path is the object itself.
#pragma once

#include "platform/Export.h"
#include "platform/configuration/RWCString.h"

#include <cstdint>
#include <stdexcept>

/// The names of a node's children, in the repository's order. The caller who got it deletes it.
class PLATFORM_EXPORT CFG_NameList {
public:
    virtual ~CFG_NameList();

    /// The name at `index` (0 to GetCount() - 1; another throws std::out_of_range), valid while the list lives.
    virtual const char* GetName(int index) const = 0;
    virtual int GetCount() const = 0;
};

/// One node: the root, or a sub-tree that resolves paths relative to itself. Only reads, so any thread may
/// call at any time. Sub-trees are deleted by the caller who got them; the root never is.
class PLATFORM_EXPORT CFG_RepositoryServices {
public:
    virtual ~CFG_RepositoryServices();

    /// A new object for the node at `path`, owned by the caller; null when there is none.
    virtual CFG_RepositoryServices* GetSubTree(const RWCString& path) const = 0;

    /// The value named `key` directly under this node, else `defaultValue`.
    virtual RWCString GetValue(RWCString key, RWCString defaultValue) const = 0;

    /// The value named by the path's last component; empty when there is none.
    virtual RWCString GetValueByPath(const RWCString& path) const = 0;

    /// A new list of the names of the child nodes (not of the values) of the node at `path`, owned by the
    /// caller; null when there is no such node.
    virtual CFG_NameList* GetChildNames(const RWCString& path) const = 0;

    /// A new integer that the caller deletes; null when `key` has no value, or one that is no 32-bit integer.
    /// A value above 2147483647 comes as its 32-bit pattern.
    virtual std::int32_t* GetIntValue(RWCString key) const = 0;
};

/// A configuration that is set but cannot be used. The text is "PATH:LINE:COLUMN: what is wrong".
class PLATFORM_EXPORT CFG_Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~CFG_Error() override;
};

/// With `CFG_REQUIRE_END=1`, each file must end with the line "# end of configuration"; otherwise loading throws
/// CFG_Error.
class PLATFORM_EXPORT CFG_Factory {
public:
    /// The root of the configuration that `CFG_REPOSITORY` names, read once, at the first call that finds it
    /// set; null while it is unset or empty. Owned by the repository. Throws CFG_Error when it is set but
    /// cannot be read or is invalid. Any thread may call.
    static CFG_RepositoryServices* GetRepositoryServices();

    /// Reads the configuration again, for what is created afterwards. All or nothing: throws CFG_Error and
    /// leaves what was in force when it cannot be read, is invalid, or `CFG_REPOSITORY` is no longer set.
    /// Sub-trees handed out before stay valid and keep what they showed. Creating a manager asks for the
    /// root several times, so call this between creations; requests may run meanwhile. Any thread may call.
    static void Reload();
};
