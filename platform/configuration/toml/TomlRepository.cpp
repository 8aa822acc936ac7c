// The configuration repository on trees. There is one root. It answers from the candidate of the calling thread's
// scope, else from the tree in force. A sub-tree and a list own a share of the tree that they were taken from, so they
// stay valid and unchanged after a reload and after a scope.
#include "platform/configuration/CFG_Listing.h"
#include "platform/configuration/CFG_RepositoryServices.h"

#include "platform/KeptUntilUnload.h"
#include "platform/configuration/ConfigurationPaths.h"
#include "platform/configuration/toml/TomlTree.h"
#include "platform/logging/Tmr_LogFile.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>

CFG_Candidate::~CFG_Candidate() = default;
CFG_Error::~CFG_Error() = default;
CFG_NameList::~CFG_NameList() = default;
CFG_RepositoryServices::~CFG_RepositoryServices() = default;

namespace secm::platform {
namespace {

std::string_view View(const RWCString& text)
{
    return {text.data(), text.length()};
}

RWCString TextOf(std::string_view value)
{
    return {value.data(), value.size()};
}

// Owns a share of the whole tree.
using NodePointer = std::shared_ptr<const Node>;

NodePointer FindNode(const NodePointer& start, const RWCString& path)
{
    if (path.length() == 0) {
        return start;
    }
    const Entry* entry = FindEntry(*start, View(path));
    return entry != nullptr && entry->node != nullptr ? NodePointer(start, entry->node) : nullptr;
}

// The value named `key` directly under `node`; null when there is none. A key is a name and no path.
const std::string_view* FindValue(const Node& node, const RWCString& key)
{
    const Entry* found = FindName(node, View(key));
    return found != nullptr && found->node == nullptr ? &found->value : nullptr;
}

// Parses digits with an optional minus before them; no value when they are no integer of 32 bits, signed or unsigned.
std::optional<std::int32_t> AsInteger(std::string_view text)
{
    std::int64_t integer = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, integer);
    if (error != std::errc() || stop != end || integer < INT32_MIN || integer > UINT32_MAX) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(integer));
}

class NameList final : public CFG_NameList {
public:
    explicit NameList(NodePointer ofNode) : node(std::move(ofNode)) {}
    const char* GetName(int index) const override { return node->childNames.at(static_cast<std::size_t>(index)); }
    int GetCount() const override { return static_cast<int>(node->childNames.size()); }

private:
    NodePointer node;
};

class Services : public CFG_RepositoryServices {
public:
    CFG_RepositoryServices* GetSubTree(const RWCString& path) const override;

    RWCString GetValue(RWCString key, RWCString defaultValue) const override
    {
        const NodePointer here = Here();
        const std::string_view* value = FindValue(*here, key);
        return value != nullptr ? TextOf(*value) : defaultValue;
    }

    RWCString GetValueByPath(const RWCString& path) const override
    {
        const NodePointer here = Here();
        const Entry* entry = FindEntry(*here, View(path));
        return entry != nullptr && entry->node == nullptr ? TextOf(entry->value) : RWCString("");
    }

    CFG_NameList* GetChildNames(const RWCString& path) const override
    {
        NodePointer node = FindNode(Here(), path);
        return node ? new NameList(std::move(node)) : nullptr;
    }

    std::int32_t* GetIntValue(RWCString key) const override
    {
        const NodePointer here = Here();
        const std::string_view* value = FindValue(*here, key);
        const auto integer = value != nullptr ? AsInteger(*value) : std::nullopt;
        return integer ? new std::int32_t(*integer) : nullptr;
    }

private:
    virtual NodePointer Here() const = 0;
};

constexpr int failureLevel = 3;
constexpr int logModule = 199; // the configuration's number in the log, and the number of its log
constexpr int logNumber = 1;

// The names of the repositories, for a message.
std::string RepositoryNames(const Node& root)
{
    std::string path = configuration_paths::repositories;
    path.pop_back(); // the separator
    const Entry* repositories = FindEntry(root, path);
    std::string names;
    if (repositories != nullptr && repositories->node != nullptr) {
        for (const char* name : repositories->node->childNames) {
            names += (names.empty() ? "'" : ", '") + std::string(name) + "'";
        }
    }
    return names.empty() ? "none" : names;
}

// A manager of a repository that the configuration lacks restricts nobody, which must not go unnoticed.
void LogUnknownRepository(const Node& root, const std::string& path)
{
    const std::string prefix = configuration_paths::repositories;
    if (path.starts_with(prefix) && path.find('\\', prefix.size()) == std::string::npos &&
        TmrGLog.StoreParams("platform/configuration/toml/TomlRepository", "CFG_RepositoryServices::GetSubTree",
                            __LINE__, failureLevel, logModule, logNumber) != 0) {
        TmrGLog.Log("The configuration has no repository '%s', so its managers restrict nobody; the repositories are: "
                    "%s\n",
                    path.c_str() + prefix.size(), RepositoryNames(root).c_str());
    }
}

class SubTree final : public Services {
public:
    explicit SubTree(NodePointer atNode) : node(std::move(atNode)) {}

private:
    NodePointer Here() const override { return node; }

    NodePointer node;
};

CFG_RepositoryServices* Services::GetSubTree(const RWCString& path) const
{
    const NodePointer here = Here();
    NodePointer node = FindNode(here, path);
    if (!node) {
        LogUnknownRepository(*here, std::string(View(path)));
    }
    return node ? new SubTree(std::move(node)) : nullptr;
}

std::string ConfiguredPath()
{
    const char* path = std::getenv("CFG_REPOSITORY");
    return path != nullptr ? path : "";
}

// The candidate of the calling thread's innermost scope; null outside of scopes. It must not have a destructor: that
// would keep the library loaded until the thread ends.
constinit thread_local const std::shared_ptr<const CFG_Candidate>* candidateOfThread = nullptr;

std::shared_ptr<const Tree> TreeOf(const std::shared_ptr<const CFG_Candidate>& candidate)
{
    if (!candidate) {
        throw CFG_Error("there is no candidate; pass the one that CFG_Factory::Read gave");
    }
    return std::static_pointer_cast<const Tree>(candidate);
}

class Root final : public Services {
public:
    static Root& Instance()
    {
        static Root& root = KeptUntilUnload<Root>();
        return root;
    }

    // What the calling thread sees; null when no configuration is set.
    std::shared_ptr<const Tree> Visible() const
    {
        if (candidateOfThread != nullptr) {
            return TreeOf(*candidateOfThread);
        }
        const std::lock_guard<std::mutex> lock(mutex);
        if (!inForce) {
            if (const std::string path = ConfiguredPath(); !path.empty()) {
                inForce = LoadTree(path, {});
            }
        }
        return inForce;
    }

    void Reload()
    {
        const std::string path = ConfiguredPath();
        if (path.empty()) {
            throw CFG_Error("CFG_REPOSITORY is not set; name the configuration's file or folder in it");
        }
        const std::lock_guard<std::mutex> changing(changeMutex);
        Replace(LoadTree(path, {}));
    }

    void PutInForce(std::shared_ptr<const Tree> candidate)
    {
        const std::lock_guard<std::mutex> changing(changeMutex);
        Replace(std::move(candidate));
    }

private:
    NodePointer Here() const override
    {
        const std::shared_ptr<const Tree> tree = Visible();
        if (!tree) {
            // Only a root of a scope that has ended gets here. No answers would look like no restrictions.
            throw CFG_Error("no configuration is in force: CFG_REPOSITORY is not set");
        }
        return {tree, &tree->root};
    }

    // The earlier tree is freed after the mutex is released.
    void Replace(std::shared_ptr<const Tree> next)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        inForce.swap(next);
    }

    std::mutex changeMutex; // held while a configuration is read again, so that the change that began last stays
    mutable std::mutex mutex;
    mutable std::shared_ptr<const Tree> inForce; // null until the first load
};

} // namespace
} // namespace secm::platform

using secm::platform::Root;
using secm::platform::Tree;

CFG_RepositoryServices* CFG_Factory::GetRepositoryServices()
{
    Root& root = Root::Instance();
    return root.Visible() ? &root : nullptr;
}

void CFG_Factory::Reload()
{
    Root::Instance().Reload();
}

std::shared_ptr<const CFG_Candidate> CFG_Factory::Read(const std::string& path, const CFG_FileObserver& observe)
{
    if (path.empty()) {
        throw CFG_Error("the path of the configuration is empty; name its file or folder");
    }
    return secm::platform::LoadTree(path, observe);
}

void CFG_Factory::PutInForce(const std::shared_ptr<const CFG_Candidate>& candidate)
{
    Root::Instance().PutInForce(secm::platform::TreeOf(candidate));
}

CFG_CandidateScope::CFG_CandidateScope(const std::shared_ptr<const CFG_Candidate>& candidate)
    : candidateOfScope(secm::platform::TreeOf(candidate)), outer(secm::platform::candidateOfThread)
{
    secm::platform::candidateOfThread = &candidateOfScope;
}

CFG_CandidateScope::~CFG_CandidateScope()
{
    secm::platform::candidateOfThread = outer;
}

std::vector<CFG_Entry> CFG_ListEntries(const RWCString& path)
{
    const std::shared_ptr<const Tree> tree = Root::Instance().Visible();
    const auto node = tree ? secm::platform::FindNode({tree, &tree->root}, path) : nullptr;
    if (!node) {
        return {};
    }
    std::vector<CFG_Entry> entries;
    for (const secm::platform::Entry& entry : node->entries) {
        const auto& place = entry.place;
        entries.push_back({std::string(entry.name),
                           entry.node != nullptr,
                           std::string(entry.value),
                           {tree->files[place.file], place.line, place.column}});
    }
    std::sort(entries.begin(), entries.end(),
              [](const CFG_Entry& left, const CFG_Entry& right) { return left.place < right.place; });
    return entries;
}
