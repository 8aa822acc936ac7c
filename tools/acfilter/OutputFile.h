// Where a long answer goes: standard output, or a file that is whole or not there; and what has to wait meanwhile.
#pragma once

#include <cstdio>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// What cannot be written throws std::runtime_error, from every operation.
class OutputFile {
public:
    /// Standard output when there is no path. Otherwise the file is written beside its place, and takes it in Finish;
    /// without that, or when a signal ends the program, nothing is left and an older file stays. One at a time.
    explicit OutputFile(const std::optional<std::string>& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(std::string_view text);
    void Finish();

    /// For a Spool: the folder that the file will be in, or empty.
    std::string ScratchFolder() const;

private:
    [[noreturn]] void Refuse() const;

    std::FILE* file = stdout;
    std::string place;     // empty: standard output
    std::string temporary; // empty: there is none any more
};

/// Lines that have to wait until something is known that comes before them. They are kept in a file without a name,
/// so that they need no memory and nobody else reads them. Throws std::runtime_error when that cannot be used.
class Spool {
public:
    /// In `folder`; when it is empty, in the folder for temporary files.
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
