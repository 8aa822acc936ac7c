// Where the log's lines go: each by one write, so that processes and threads which share a file do not mix them, and
// whole or not at all, so that a full disk leaves no line that another one is joined to.
#pragma once

#include <spdlog/sinks/base_sink.h>

#include <mutex>
#include <string>

class LineSink final : public spdlog::sinks::base_sink<std::mutex> {
public:
    /// Appends to the file at `path`; an empty one stands for standard error, as does a file that cannot be opened,
    /// which is reported there.
    explicit LineSink(std::string path);
    ~LineSink() override;

    /// Opens the file at the path again. False, after a report on standard error: it cannot be opened, and lines go on
    /// to where they went before.
    bool Reopen();

private:
    void sink_it_(const spdlog::details::log_msg& message) override;
    void flush_() override {}

    void TakeBack(std::size_t written);

    const std::string path;
    int descriptor;      // ours, or standard error's
    bool isTorn = false; // the file ends with a part of a line, which the next one must not be joined to
};
