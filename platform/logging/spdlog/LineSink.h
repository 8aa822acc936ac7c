// Writes each line of the log with one call of write(), so that processes that share a file do not mix their lines.
// A line that does not fit on the disk is taken back.
#pragma once

#include "platform/Descriptor.h"

#include <spdlog/sinks/base_sink.h>

#include <mutex>
#include <string>

namespace secm::platform {

/// Any thread may use it.
class LineSink final : public spdlog::sinks::base_sink<std::mutex> {
public:
    /// Appends to the file at `path`. Writes to standard error when `path` is empty, or when the file cannot be opened,
    /// which is reported there.
    explicit LineSink(std::string path);

    /// Opens the file at the path again. False when it cannot be opened: that is reported on standard error, and lines
    /// are written to where they went before.
    bool Reopen();

private:
    void sink_it_(const spdlog::details::log_msg& message) override;
    void flush_() override {}

    int Target() const;
    void TakeBack(std::size_t written);

    const std::string path;
    Descriptor file;     // none: standard error
    bool isTorn = false; // the file ends with a part of a line
};

} // namespace secm::platform
