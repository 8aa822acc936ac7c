// toml++ reads the files; here they become one tree in the order in which an administrator wrote it. toml++
// sorts its tables, so that order is taken from the place of each key. Whatever cannot be taken as it stands
// is refused with its place, for a setting that is silently passed over could let a user see more.
#include "platform/configuration/toml/TomlTree.h"

#include "platform/configuration/CFG_RepositoryServices.h"

#include <toml++/toml.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <utility>

namespace configuration {
namespace {

constexpr std::int64_t smallestInteger = -2147483648LL;
constexpr std::int64_t largestInteger = 4294967295LL;

// Far more than any path that is read, and far less than would exhaust the stack.
constexpr int deepestNode = 200;

std::string PlaceOf(const std::string& path, const toml::source_position& position)
{
    return path + ":" + std::to_string(std::max(position.line, 1U)) + ":" +
           std::to_string(std::max(position.column, 1U));
}

// For what is wrong with a file as a whole.
[[noreturn]] void RefuseFile(const std::string& path, const std::string& why)
{
    throw CFG_Error(path + ":1:1: " + why);
}

std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        RefuseFile(path, std::string("cannot be opened: ") + std::strerror(errno));
    }
    std::string content;
    std::array<char, 65536> piece{};
    do {
        file.read(piece.data(), piece.size());
        content.append(piece.data(), static_cast<std::size_t>(file.gcount()));
    } while (file);
    // The end of what could be read is not the end of the file: cut short, it would restrict less.
    if (file.bad()) {
        RefuseFile(path, std::string("cannot be read: ") + std::strerror(errno));
    }
    return content;
}

const char* KindOf(const toml::node& node)
{
    switch (node.type()) {
    case toml::node_type::array:
        return "an array";
    case toml::node_type::floating_point:
        return "a floating-point number";
    case toml::node_type::boolean:
        return "a boolean";
    default:
        return "a date or time";
    }
}

std::string ValueOf(const toml::node& node, const std::string& name, const std::string& place)
{
    if (const auto* text = node.as_string()) {
        return text->get();
    }
    const auto* integer = node.as_integer();
    if (integer == nullptr) {
        throw CFG_Error(place + ": '" + name + "' must be a text or a whole number, found " + KindOf(node) +
                        (node.is_array() ? "" : "; write it between quotes"));
    }
    if (integer->get() < smallestInteger || integer->get() > largestInteger) {
        throw CFG_Error(place + ": '" + name + "' must be from " + std::to_string(smallestInteger) + " to " +
                        std::to_string(largestInteger) + ", found " + std::to_string(integer->get()));
    }
    return std::to_string(integer->get());
}

void CheckName(const std::string& name, const std::string& place)
{
    if (name.empty()) {
        throw CFG_Error(place + ": a name must not be empty");
    }
    if (name.find('\\') != std::string::npos || name.find('\0') != std::string::npos) {
        throw CFG_Error(place + ": the name '" + name.substr(0, name.find('\0')) +
                        "' must contain neither a backslash nor a NUL");
    }
}

void Merge(Node& node, const toml::table& table, const std::string& path, int depth = 1)
{
    std::vector<std::pair<const toml::key*, const toml::node*>> inFileOrder;
    inFileOrder.reserve(table.size());
    for (auto&& [key, value] : table) {
        inFileOrder.emplace_back(&key, &value);
    }
    std::sort(inFileOrder.begin(), inFileOrder.end(), [](const auto& left, const auto& right) {
        return left.first->source().begin < right.first->source().begin;
    });

    for (const auto& [key, value] : inFileOrder) {
        const std::string name(key->str());
        const std::string place = PlaceOf(path, key->source().begin);
        CheckName(name, place);
        const toml::table* child = value->as_table();
        if (child != nullptr && depth == deepestNode) {
            throw CFG_Error(place + ": tables are nested more than " + std::to_string(deepestNode) + " deep");
        }
        auto [found, isNew] = node.entries.try_emplace(name);
        Entry& entry = found->second;
        if (isNew) {
            entry.place = place;
            if (child != nullptr) {
                entry.node = std::make_unique<Node>();
                node.childNames.push_back(&found->first);
            } else {
                entry.value = ValueOf(*value, name, place);
            }
        } else if (child == nullptr || entry.node == nullptr) {
            throw CFG_Error(place + ": '" + name + "' is " + (child != nullptr ? "a table" : "a value") + " here and " +
                            (entry.node != nullptr ? "a table" : "a value") + " already at " + entry.place +
                            "; remove or rename one of the two");
        }
        if (child != nullptr) {
            Merge(*entry.node, *child, path, depth + 1);
        }
    }
}

std::vector<std::string> FilesOf(const std::string& path)
{
    namespace fs = std::filesystem;
    if (std::error_code ignored; !fs::is_directory(path, ignored)) {
        return {path};
    }
    std::vector<std::string> files;
    try {
        for (const auto& item : fs::directory_iterator(path)) {
            const std::string name = item.path().filename().string();
            if (name.ends_with(".toml") && !name.starts_with('.') && !item.is_directory()) {
                files.push_back(item.path().string());
            }
        }
    } catch (const fs::filesystem_error& error) {
        RefuseFile(path, "the folder cannot be read: " + error.code().message());
    }
    if (files.empty()) {
        RefuseFile(path, "the folder holds no *.toml file");
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

std::shared_ptr<const Node> LoadTree(const std::string& path)
{
    auto root = std::make_shared<Node>();
    for (const std::string& file : FilesOf(path)) {
        try {
            Merge(*root, toml::parse(ReadFile(file), file), file);
        } catch (const toml::parse_error& error) {
            throw CFG_Error(PlaceOf(file, error.source().begin) + ": " + std::string(error.description()));
        }
    }
    return root;
}

const Entry* FindEntry(const Node& start, std::string_view path)
{
    const Node* node = &start;
    for (;;) {
        const std::size_t end = path.find('\\');
        const auto found = node->entries.find(path.substr(0, end));
        if (found == node->entries.end()) {
            return nullptr;
        }
        if (end == std::string_view::npos) {
            return &found->second;
        }
        node = found->second.node.get();
        if (node == nullptr) {
            return nullptr;
        }
        path.remove_prefix(end + 1);
    }
}

} // namespace configuration
