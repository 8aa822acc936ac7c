#include "tests/Cases.h"

#include <fstream>
#include <stdexcept>

namespace secm::testing {

Lines CaseLines(const std::string& file)
{
    std::ifstream input(CASES_FOLDER "/" + file);
    Lines lines;
    for (std::string line; std::getline(input, line);) {
        if (!line.empty() && line.front() != '#') {
            lines.push_back(line);
        }
    }
    if (lines.empty()) {
        throw std::runtime_error(file + " holds no case");
    }
    return lines;
}

std::vector<Lines> CaseRows(const std::string& file)
{
    std::vector<Lines> rows;
    for (const std::string& line : CaseLines(file)) {
        Lines& row = rows.emplace_back();
        for (const std::string& column : Split(line, " | ")) {
            row.push_back(Unescaped(column));
        }
    }
    return rows;
}

std::string Unescaped(const std::string& text)
{
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char next = text[at] == '\\' && at + 1 < text.size() ? text[++at] : '\0';
        if (next == 'x') {
            bytes += static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16));
            at += 2;
        } else {
            bytes += next == '\0' ? text[at] : next == 'n' ? '\n' : next == 't' ? '\t' : next == '0' ? '\0' : next;
        }
    }
    return bytes;
}

Lines Split(const std::string& text, const std::string& separator)
{
    Lines parts;
    std::size_t start = 0;
    for (std::size_t end = 0; (end = text.find(separator, start)) != std::string::npos;
         start = end + separator.size()) {
        parts.push_back(text.substr(start, end - start));
    }
    parts.push_back(text.substr(start));
    return parts;
}

} // namespace secm::testing
