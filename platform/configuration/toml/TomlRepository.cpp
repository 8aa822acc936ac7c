// The configuration repository on the loaded tree. The one root looks at whatever tree is in force; a
// sub-tree keeps the tree alive that it was taken from, so a reload never changes or frees what a reader
// holds.
#include "platform/configuration/CFG_Listing.h"
#include "platform/configuration/CFG_RepositoryServices.h"

#include "platform/KeptUntilUnload.h"
#include "platform/configuration/toml/TomlTree.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>

using configuration::Entry;
using configuration::FindEntry;
using configuration::FindName;
using configuration::LoadTree;
using configuration::Node;
using configuration::Tree;

CFG_NameList::~CFG_NameList() = default;
CFG_RepositoryServices::~CFG_RepositoryServices() = default;
CFG_Error::~CFG_Error() = default;

namespace {

std::string_view View(const RWCString& text)
{
    return {text.data(), text.length()};
}

RWCString TextOf(std::string_view value)
{
    return {value.data(), value.size()};
}

// Keeps the whole tree alive, whichever of its nodes it points to.
using NodePointer = std::shared_ptr<const Node>;

NodePointer FindNode(const NodePointer& start, const RWCString& path)
{
    if (path.length() == 0) {
        return start;
    }
    const Entry* entry = FindEntry(*start, View(path));
    return entry != nullptr && entry->node != nullptr ? NodePointer(start, entry->node) : nullptr;
}

// The value directly under `node`: a key is a name and no path.
const std::string_view* FindValue(const Node& node, const RWCString& key)
{
    const Entry* found = FindName(node, View(key));
    return found != nullptr && found->node == nullptr ? &found->value : nullptr;
}

// Digits with an optional minus before them, as an integer of 32 bits with or without a sign.
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

class SubTree final : public Services {
public:
    explicit SubTree(NodePointer atNode) : node(std::move(atNode)) {}

private:
    NodePointer Here() const override { return node; }

    NodePointer node;
};

CFG_RepositoryServices* Services::GetSubTree(const RWCString& path) const
{
    NodePointer node = FindNode(Here(), path);
    return node ? new SubTree(std::move(node)) : nullptr;
}

std::string ConfiguredPath()
{
    const char* path = std::getenv("CFG_REPOSITORY");
    return path != nullptr ? path : "";
}

class Root final : public Services {
public:
    static Root& Instance()
    {
        static Root& root = secm::platform::KeptUntilUnload<Root>();
        return root;
    }

    // False: no configuration is set.
    bool EnsureLoaded()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!tree) {
            const std::string path = ConfiguredPath();
            if (path.empty()) {
                return false;
            }
            tree = LoadTree(path);
        }
        return true;
    }

    void Reload()
    {
        const std::string path = ConfiguredPath();
        if (path.empty()) {
            throw CFG_Error("CFG_REPOSITORY is not set; name the configuration's file or folder in it");
        }
        // One at a time, so that the one which began last is the one that stays.
        const std::lock_guard<std::mutex> reloading(reloadMutex);
        std::shared_ptr<const Tree> loaded = LoadTree(path);
        const std::lock_guard<std::mutex> lock(mutex);
        tree.swap(loaded);
    }

    std::shared_ptr<const Tree> InForce() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return tree;
    }

private:
    NodePointer Here() const override
    {
        const std::shared_ptr<const Tree> inForce = InForce();
        return {inForce, &inForce->root};
    }

    std::mutex reloadMutex;
    mutable std::mutex mutex;
    std::shared_ptr<const Tree> tree;
};

} // namespace

CFG_RepositoryServices* CFG_Factory::GetRepositoryServices()
{
    Root& root = Root::Instance();
    return root.EnsureLoaded() ? &root : nullptr;
}

void CFG_Factory::Reload()
{
    Root::Instance().Reload();
}

std::vector<CFG_Entry> CFG_ListEntries(const RWCString& path)
{
    if (CFG_Factory::GetRepositoryServices() == nullptr) {
        return {};
    }
    const std::shared_ptr<const Tree> tree = Root::Instance().InForce();
    const NodePointer node = FindNode(NodePointer(tree, &tree->root), path);
    if (!node) {
        return {};
    }
    std::vector<CFG_Entry> entries;
    for (const Entry& entry : node->entries) {
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
