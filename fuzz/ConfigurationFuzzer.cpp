// Loads any bytes as a configuration. Either they are refused with a place in them, and the configuration in force
// stays; or all operations give the same answers about them, also after a second load. With CFG_REQUIRE_END=1 they are
// accepted if and only if each file ends with the end line. An input is one file, or two files of a folder when it
// holds the line "#second file".
#include "fuzz/Fuzzing.h"
#include "platform/configuration/CFG_Listing.h"
#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/toml/Nesting.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

using namespace secm::fuzzing;

namespace {

constexpr std::string_view secondFileLine = "#second file\n";

std::string_view input;

void Require(bool holds, const char* what, const std::string& where)
{
    if (!holds) {
        Fail(std::string(what) + ": " + Shown(where) + "\nin the configuration\n" + std::string(input));
    }
}

struct Work {
    std::filesystem::path folder;

    Work() : folder(std::filesystem::temp_directory_path() / ("configuration-" + std::to_string(getpid())))
    {
        std::filesystem::create_directories(folder / "two");
    }
    ~Work() { std::filesystem::remove_all(folder); }
};

void Write(const std::string& path, std::string_view content)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"), &std::fclose);
    if (!file || std::fwrite(content.data(), 1, content.size(), file.get()) != content.size()) {
        Fail(path + " cannot be written");
    }
}

std::string Text(const RWCString& text)
{
    return {text.data(), text.length()};
}

// An optional minus and digits, from -2147483648 to 4294967295.
bool IsInteger(const std::string& text, long long& integer)
{
    std::string digits = text.starts_with('-') ? text.substr(1) : text;
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size() - 1));
    if (digits.size() > 10) {
        return false;
    }
    integer = text.starts_with('-') ? -std::stoll(digits) : std::stoll(digits);
    return integer >= -2147483648LL && integer <= 4294967295LL;
}

void CheckValue(const CFG_RepositoryServices& node, const std::string& path, const CFG_Entry& entry)
{
    const CFG_RepositoryServices& root = *CFG_Factory::GetRepositoryServices();
    Require(Text(node.GetValue(entry.name, "absent")) == entry.value, "GetValue differs", path);
    Require(Text(root.GetValueByPath(path)) == entry.value, "GetValueByPath differs", path);
    Require(Text(node.GetValueByPath(entry.name)) == entry.value, "GetValueByPath differs", path);
    Require(std::unique_ptr<CFG_RepositoryServices>(root.GetSubTree(path)) == nullptr, "a value has a sub-tree", path);
    Require(std::unique_ptr<CFG_NameList>(node.GetChildNames(entry.name)) == nullptr, "a value has children", path);
    const std::unique_ptr<const std::int32_t> integer(node.GetIntValue(entry.name));
    long long expected = 0;
    const bool isInteger = IsInteger(entry.value, expected);
    Require((integer != nullptr) == isInteger && (!isInteger || *integer == static_cast<std::int32_t>(expected)),
            "GetIntValue differs", path);
}

// Compares the answers of all operations about the node at `path` and appends its content to `seen`. Gives the depth of
// nested names in it.
unsigned CheckNode(const CFG_RepositoryServices& node, const std::string& path, std::string& seen)
{
    unsigned depth = 0;
    std::vector<std::string> nodeNames;
    for (const CFG_Entry& entry : CFG_ListEntries(path)) {
        const std::string entryPath = path.empty() ? entry.name : path + "\\" + entry.name;
        const CFG_Place& place = entry.place;
        Require(!entry.name.empty() && entry.name.find('\\') == std::string::npos &&
                    entry.name.find('\0') == std::string::npos && place.line >= 1 && place.column >= 1,
                "a name that should have been refused, or without a place", entryPath);
        seen += entry.name + (entry.isNode ? " {" : " = " + entry.value) + " # " + place.file + ":" +
                std::to_string(place.line) + ":" + std::to_string(place.column) + "\n";
        if (!entry.isNode) {
            CheckValue(node, entryPath, entry);
            depth = std::max(depth, 1U);
            continue;
        }
        nodeNames.push_back(entry.name);
        Require(Text(node.GetValue(entry.name, "absent")) == "absent", "a node has a value", entryPath);
        Require(node.GetValueByPath(entry.name).length() == 0, "a node has a value", entryPath);
        Require(std::unique_ptr<const std::int32_t>(node.GetIntValue(entry.name)) == nullptr, "a node has an integer",
                entryPath);
        const std::unique_ptr<CFG_RepositoryServices> child(node.GetSubTree(entry.name));
        Require(child != nullptr, "no sub-tree for the node", entryPath);
        depth = std::max(depth, CheckNode(*child, entryPath, seen) + 1);
    }
    const std::unique_ptr<CFG_NameList> names(node.GetChildNames(""));
    Require(names != nullptr && names->GetCount() == static_cast<int>(nodeNames.size()), "GetChildNames differs", path);
    for (int index = 0; index < names->GetCount(); ++index) {
        Require(names->GetName(index) == nodeNames[static_cast<std::size_t>(index)], "GetChildNames differs", path);
    }
    seen += "}\n";
    return depth;
}

struct View {
    std::string seen;
    unsigned depth = 0;
};

View Look()
{
    View view;
    view.depth = CheckNode(*CFG_Factory::GetRepositoryServices(), "", view.seen);
    return view;
}

// The nesting that is counted before parsing, of a file that the parser accepts: never too little, at most one too
// much.
void CheckNesting(std::string_view content, unsigned depth)
{
    Require(depth == 0 || secm::platform::FindTooDeep(content, depth - 1), "counted too little of the nesting",
            std::to_string(depth));
    Require(!secm::platform::FindTooDeep(content, depth + 1), "counted too much nesting", std::to_string(depth));
}

// Requires PATH:LINE:COLUMN: TEXT, with a place in the file or at its end.
void CheckError(std::string error, const std::vector<std::pair<std::string, std::string_view>>& files)
{
    for (const auto& [path, content] : files) {
        if (!error.starts_with(path + ":")) {
            continue;
        }
        unsigned line = 0;
        unsigned column = 0;
        int length = 0;
        std::sscanf(error.c_str() + path.size(), ":%u:%u: %n", &line, &column, &length);
        const auto lines = static_cast<unsigned>(std::count(content.begin(), content.end(), '\n')) + 1;
        Require(length > 0 && path.size() + static_cast<std::size_t>(length) < error.size() && line >= 1 &&
                    line <= lines && column >= 1,
                "an error without a place in the file", error);
        return;
    }
    Require(false, "an error that names none of the files", error);
}

bool HasEndLine(const std::string& content)
{
    for (const char* lineEnd : {"", "\n", "\r\n"}) {
        if (("\n" + content).ends_with(std::string("\n# end of configuration") + lineEnd)) {
            return true;
        }
    }
    return false;
}

bool IsTakenWhenEndLineIsRequired()
{
    setenv("CFG_REQUIRE_END", "1", 1);
    bool isTaken = true;
    try {
        CFG_Factory::Reload();
    } catch (const CFG_Error&) {
        isTaken = false;
    }
    unsetenv("CFG_REQUIRE_END");
    return isTaken;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Work work;
    static std::string inForce = [] {
        Write(work.folder / "one.toml", "");
        setenv("CFG_REPOSITORY", (work.folder / "one.toml").c_str(), 1);
        return Look().seen;
    }();

    input = Bytes(data, size);
    std::vector<std::pair<std::string, std::string_view>> files;
    std::string path = work.folder / "one.toml";
    if (const std::size_t end = input.find(secondFileLine); end != std::string_view::npos) {
        path = work.folder / "two";
        files = {{path + "/a.toml", input.substr(0, end)},
                 {path + "/b.toml", input.substr(end + secondFileLine.size())}};
    } else {
        files = {{path, input}};
    }
    for (const auto& [file, content] : files) {
        Write(file, content);
    }

    setenv("CFG_REPOSITORY", path.c_str(), 1);
    try {
        CFG_Factory::Reload();
    } catch (const CFG_Error& error) {
        CheckError(error.what(), files);
        Require(Look().seen == inForce, "what was in force is not after a refusal", inForce);
        return 0;
    }
    const View view = Look();
    inForce = view.seen;
    if (files.size() == 1) {
        CheckNesting(input, view.depth);
    }
    CFG_Factory::Reload();
    Require(Look().seen == inForce, "a second load differs from", inForce);
    const bool haveEndLine =
        std::all_of(files.begin(), files.end(), [](const auto& file) { return HasEndLine(std::string(file.second)); });
    Require(IsTakenWhenEndLineIsRequired() == haveEndLine, "taken without its end line, or refused with it", inForce);
    Require(Look().seen == inForce, "a load with the end line differs from", inForce);
    return 0;
}
