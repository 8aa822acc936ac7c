// The configuration repository as the module sees it: a tree of named nodes with named values.
// A path is a sequence of names joined by "\"; the empty path is the object itself.
#pragma once

#include "platform/Export.h"
#include "platform/configuration/CFG_Candidate.h"
#include "platform/configuration/RWCString.h"

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

/// The names of a node's children, in the repository's order. The caller who got it deletes it.
class PLATFORM_EXPORT CFG_NameList {
public:
    virtual ~CFG_NameList();

    /// The name at `index` (0 to GetCount() - 1; another throws std::out_of_range), valid while the list lives.
    virtual const char* GetName(int index) const = 0;
    virtual int GetCount() const = 0;
};

/// One node: the root, or a sub-tree that resolves paths relative to itself. All operations only read, so any thread
/// may call them at any time. The caller who got a sub-tree deletes it; nobody deletes the root.
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
    /// A value above 2147483647 is given as its 32-bit pattern: 4294967295 as -1.
    virtual std::int32_t* GetIntValue(RWCString key) const = 0;
};

/// A configuration that is set but cannot be used. The text is "PATH:LINE:COLUMN: what is wrong".
class PLATFORM_EXPORT CFG_Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~CFG_Error() override;
};

/// The configuration in force, and what replaces it. With `CFG_REQUIRE_END=1`, each file must end with the line
/// "# end of configuration"; otherwise reading it throws CFG_Error. Any thread may call.
class PLATFORM_EXPORT CFG_Factory {
public:
    /// The root of the configuration: of the candidate of the calling thread's CFG_CandidateScope, else of what is in
    /// force. That is what `CFG_REPOSITORY` names, read once, at the first call that finds it set. Null while nothing
    /// is in force and the variable is unset or empty. Owned by the repository; valid until the library is unloaded.
    /// Throws CFG_Error when the variable is set but the configuration cannot be read or is invalid.
    static CFG_RepositoryServices* GetRepositoryServices();

    /// Reads what `CFG_REPOSITORY` names again and puts it in force, for what is created afterwards. All or nothing:
    /// when it cannot be read, is invalid, or the variable is no longer set, this throws CFG_Error and leaves what was
    /// in force. Sub-trees handed out before stay valid and keep what they showed. Creating a manager asks for the root
    /// several times, so call this between creations; requests may run meanwhile.
    static void Reload();

    /// Reads the file or folder at `path` and changes nothing in force. `observe`, when given, is called for each file.
    /// The result is never null. Throws CFG_Error when the configuration cannot be read or is invalid.
    /// A weak symbol, as PutInForce and CFG_CandidateScope are: null where the configuration library has no candidates.
    __attribute__((weak)) static std::shared_ptr<const CFG_Candidate> Read(const std::string& path,
                                                                           const CFG_FileObserver& observe = {});

    /// Puts a candidate in force as a successful Reload does; what `CFG_REPOSITORY` names is not read. Threads in a
    /// CFG_CandidateScope keep theirs until its end. Throws CFG_Error when `candidate` is null.
    __attribute__((weak)) static void PutInForce(const std::shared_ptr<const CFG_Candidate>& candidate);
};
