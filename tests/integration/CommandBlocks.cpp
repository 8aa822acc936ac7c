#include "tests/integration/CommandBlocks.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>

namespace secm::testing {

namespace {

void ReplaceAll(std::string& text, const std::string& from, const std::string& to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
}

// In bytes; 0 where the text is not UTF-8.
std::size_t LengthOfCharacter(const std::string& text, std::size_t at)
{
    const auto leadingOnes = static_cast<std::size_t>(std::countl_one(static_cast<unsigned char>(text[at])));
    const std::size_t length = leadingOnes == 0 ? 1 : leadingOnes == 1 || leadingOnes > 4 ? 0 : leadingOnes;
    for (std::size_t n = 1; n < length; ++n) {
        if (at + n >= text.size() || (static_cast<unsigned char>(text[at + n]) & 0xc0U) != 0x80) {
            return 0;
        }
    }
    return length;
}

} // namespace

std::vector<CommandBlock> ParseCommandBlocks(const std::string& file, std::istream& input)
{
    static const std::regex title("=== ([A-Za-z0-9]+)");
    static const std::regex status("--- status ([0-9]{1,3})");
    std::vector<CommandBlock> blocks;
    std::string* part = nullptr; // of the last block
    int number = 0;
    const auto require = [&](bool holds, const std::string& remedy) {
        if (!holds) {
            throw std::runtime_error(file + ":" + std::to_string(number) + ": " + remedy);
        }
    };
    const auto end = [&](CommandBlock& block) {
        for (std::string* text : {&block.script, &block.output, &block.errors}) {
            text->erase(text->find_last_not_of('\n') + 1);
            *text += text->empty() ? "" : "\n";
        }
        require(!block.script.empty() && block.status >= 0, "the block before this line needs a command and a status");
    };
    for (std::string line; std::getline(input, line);) {
        ++number;
        std::smatch match;
        if (line.starts_with("===")) {
            require(std::regex_match(line, match, title), "write === and a name of letters and digits");
            std::for_each(blocks.end() - (blocks.empty() ? 0 : 1), blocks.end(), end);
            blocks.push_back({match[1], file + ":" + std::to_string(number), "", -1, "", ""});
            part = &blocks.back().script;
        } else if (line.starts_with("--- ")) {
            require(!blocks.empty(), "a part stands before the first block");
            CommandBlock& block = blocks.back();
            if (part == &block.script && std::regex_match(line, match, status)) {
                block.status = std::stoi(match[1]);
                part = nullptr;
                continue;
            }
            const bool isOutput = line == "--- stdout" && part == nullptr;
            require(isOutput || (line == "--- stderr" && part != &block.script && part != &block.errors),
                    "write --- status NUMBER, then --- stdout and --- stderr, each at most once");
            part = isOutput ? &block.output : &block.errors;
        } else if (part != nullptr) {
            *part += line + "\n";
        } else {
            require(line.empty() || (blocks.empty() && line.starts_with('#')), "text outside of a block's parts");
        }
    }
    ++number;
    std::for_each(blocks.end() - (blocks.empty() ? 0 : 1), blocks.end(), end);
    return blocks;
}

std::vector<CommandBlock> ReadCommandBlocks()
{
    std::set<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(CASES_FOLDER "/commands")) {
        files.insert(entry.path());
    }
    std::vector<CommandBlock> all;
    std::set<std::string> names;
    for (const std::filesystem::path& file : files) {
        std::ifstream input(file);
        for (CommandBlock& block : ParseCommandBlocks("tests/cases/commands/" + file.filename().string(), input)) {
            if (!names.insert(block.name).second) {
                throw std::runtime_error(block.place + ": another block has the name " + block.name);
            }
            all.push_back(std::move(block));
        }
    }
    return all;
}

std::string Visible(const std::string& text, const std::string& scratchFolder)
{
    static const std::regex time("20[0-9]{2}-[0-9]{2}-[0-9]{2}[T ][0-9]{2}:[0-9]{2}:[0-9]{2}(\\.[0-9]{3}Z| UTC)");
    static const std::regex thread("(<TIME> \\[[0-9]+\\]) \\[[0-9]+\\] ");
    static const std::regex sourceLine("( \\([A-Za-z_/]+):[0-9]+\\)");
    std::string plain = text;
    ReplaceAll(plain, scratchFolder, "<FOLDER>");
    ReplaceAll(plain, std::filesystem::path(scratchFolder).filename(), "<FOLDER NAME>");
    ReplaceAll(plain, LIBRARY_FOLDER, "<LIBRARIES>");
    plain = std::regex_replace(std::regex_replace(plain, time, "<TIME>"), sourceLine, "$1:<LINE>)");
    plain = std::regex_replace(plain, thread, "$1 [<THREAD>] ");
    if (!plain.empty() && plain.back() != '\n') {
        plain += "<END>\n";
    } else if (plain == "\n" || plain.ends_with("\n\n")) {
        plain.insert(plain.size() - 1, "<EMPTY>");
    }
    std::ostringstream visible;
    for (std::size_t at = 0; at < plain.size();) {
        const auto byte = static_cast<unsigned char>(plain[at]);
        const bool isHidden = (byte < ' ' && byte != '\n') || byte == 0x7f || (byte == ' ' && plain[at + 1] == '\n');
        const std::size_t length = isHidden ? 0 : LengthOfCharacter(plain, at);
        if (length == 0) {
            visible << "<0x" << std::hex << std::uppercase << std::setw(2) << std::setfill('0') << int{byte} << ">";
        }
        visible << plain.substr(at, length);
        at += std::max<std::size_t>(length, 1);
    }
    return visible.str();
}

} // namespace secm::testing
