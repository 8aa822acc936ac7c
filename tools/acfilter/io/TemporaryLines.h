// Keeps lines until they can be written: something that comes before them is not known yet.
#pragma once

#include <fstream>
#include <functional>
#include <string>
#include <string_view>

namespace secm::acfilter {

/// The lines are kept in a file without a name, so they need no memory and nobody else can read them. Each operation
/// throws std::runtime_error when that file cannot be used.
class Spool {
public:
    /// Makes the file in `folder`; when that is empty, in the folder for temporary files.
    explicit Spool(const std::string& folder);

    /// `lines` end in a line end.
    void Write(std::string_view lines);

    /// Calls `handle` for each line, without its end. Once, after everything is written.
    void ForEachLine(const std::function<void(const std::string& line)>& handle);

private:
    [[noreturn]] void Refuse(const char* what) const;

    std::string place;
    std::fstream file;
};

} // namespace secm::acfilter
