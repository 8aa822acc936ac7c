// Keeps lines that cannot be written yet, because something that comes before them is not known yet.
#pragma once

#include <fstream>
#include <functional>
#include <string>
#include <string_view>

namespace secm::acfilter {

/// The lines are kept in a file without a name, so they need no memory and nobody else can read them. Each operation
/// throws std::runtime_error when that file cannot be used.
class TemporaryLines {
public:
    /// Makes the file in `folder`; when that is empty, in the folder for temporary files.
    explicit TemporaryLines(const std::string& folder);

    /// `lines` end in a line end. Not after the first Read.
    void Write(std::string_view lines);

    /// Reads the next line, without its end. False behind the last one.
    bool Read(std::string& line);

    /// Calls `handle` for each line that is not read yet, without its end.
    void ForEachLine(const std::function<void(std::string_view line)>& handle);

private:
    [[noreturn]] void Refuse(const char* what) const;

    std::string place;
    std::fstream file;
    bool isBeingRead = false;
};

} // namespace secm::acfilter
