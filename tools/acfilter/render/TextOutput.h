// What render/ writes to. The commands implement it with a file or standard output.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

namespace secm::acfilter {

/// Lines that cannot be written yet, because something that comes before them is not known yet. Each operation throws
/// std::runtime_error when they cannot be kept.
class WaitingLines {
public:
    virtual ~WaitingLines() = default;

    /// `lines` end in a line end.
    virtual void Write(std::string_view lines) = 0;

    /// Calls `handle` for each line, without its end. Once, after everything is written.
    virtual void ForEachLine(const std::function<void(std::string_view line)>& handle) = 0;
};

/// Each operation throws std::runtime_error when the output cannot be written.
class TextOutput {
public:
    virtual ~TextOutput() = default;
    virtual void Write(std::string_view text) = 0;
    virtual std::unique_ptr<WaitingLines> MakeWaitingLines() = 0;
};

} // namespace secm::acfilter
