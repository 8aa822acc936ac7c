#include "testing/InMemoryConfiguration.h"

#include "platform/configuration/CFG_RepositoryServices.h"
#include "testing/Outside.h"

#include <algorithm>
#include <charconv>

CFG_NameList::~CFG_NameList() = default;
CFG_RepositoryServices::~CFG_RepositoryServices() = default;

namespace secm::testing {

namespace {

class NameList : public CFG_NameList {
public:
    explicit NameList(const std::vector<std::string>& listed) : names(listed) {}
    ~NameList() override { outside.calls.Delete("names"); }
    const char* GetName(int index) const override { return names.at(static_cast<std::size_t>(index)).c_str(); }
    int GetCount() const override { return static_cast<int>(names.size()); }

private:
    std::vector<std::string> names;
};

class Node : public CFG_RepositoryServices {
public:
    explicit Node(std::string nodePath) : path(std::move(nodePath)) {}
    ~Node() override { outside.calls.Delete(path); }

    CFG_RepositoryServices* GetSubTree(const RWCString& relative) const override
    {
        std::string absolute = Absolute(relative);
        outside.calls.Ask("GetSubTree ", absolute);
        return outside.configuration.nodes.count(absolute) != 0 ? new Node(std::move(absolute)) : nullptr;
    }
    RWCString GetValue(RWCString key, RWCString defaultValue) const override
    {
        outside.calls.Ask("GetValue ", key.data());
        const std::string* value = Find(key);
        return value != nullptr ? RWCString(*value) : defaultValue;
    }
    RWCString GetValueByPath(const RWCString& relative) const override
    {
        outside.calls.Ask("GetValueByPath ", Absolute(relative));
        const std::string* value = Find(relative);
        return value != nullptr ? *value : "";
    }
    CFG_NameList* GetChildNames(const RWCString& relative) const override
    {
        const std::string absolute = relative.length() == 0 ? path : Absolute(relative);
        outside.calls.Ask("GetChildNames ", absolute);
        const auto found = outside.configuration.nodes.find(absolute);
        const bool lists = found != outside.configuration.nodes.end() && found->second;
        return lists ? new NameList(*found->second) : nullptr;
    }
    std::int32_t* GetIntValue(RWCString key) const override
    {
        outside.calls.Ask("GetIntValue ", key.data());
        const std::string* value = Find(key);
        return value != nullptr ? new std::int32_t(std::stoi(*value)) : nullptr;
    }

private:
    std::string Absolute(const RWCString& relative) const
    {
        const std::string text(relative.data(), relative.length());
        return path.empty() ? text : path + "\\" + text;
    }

    const std::string* Find(const RWCString& relative) const
    {
        const auto found = outside.configuration.values.find(Absolute(relative));
        return found != outside.configuration.values.end() ? &found->second : nullptr;
    }

    std::string path;
};

} // namespace

void Configuration::Add(const std::string& path, const std::string& value)
{
    std::string parent;
    for (std::size_t start = 0, end = 0; (end = path.find('\\', start)) != std::string::npos; start = end + 1) {
        auto& siblings = nodes.try_emplace(parent, std::in_place).first->second;
        const std::string name = path.substr(start, end - start);
        if (std::find(siblings->begin(), siblings->end(), name) == siblings->end()) {
            siblings->push_back(name);
        }
        parent = path.substr(0, end);
        nodes.try_emplace(parent, std::in_place);
    }
    if (!path.ends_with('\\')) {
        values[path] = value;
    }
}

} // namespace secm::testing

CFG_RepositoryServices* CFG_Factory::GetRepositoryServices()
{
    static secm::testing::Node root("");
    secm::testing::outside.calls.Ask("GetRepositoryServices");
    return secm::testing::outside.configuration.exists ? &root : nullptr;
}
