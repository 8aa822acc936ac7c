// Where an answer goes: standard output, or a file that is whole or not there; and what has to wait meanwhile.
#pragma once

#include "tools/acfilter/OutputPlace.h"

#include <cstdio>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// What cannot be written throws std::runtime_error, from every operation.
class OutputFile {
public:
    /// Standard output when there is no path. Otherwise a file without a name is written, which Finish puts into its
    /// place; without that, or when the program is killed, an older file stays and nothing is left. Where the file
    /// system knows no such files, a hidden one (".NAME.acfilter-unfinished") is written beside the place, which the
    /// next OutputFile for this place removes.
    explicit OutputFile(const std::optional<std::string>& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(std::string_view text);

    /// Only the owner may read a new file; one that is replaced leaves its owner, group, mode and access control list
    /// to the new one. A file that has appeared where there was none is not replaced.
    void Finish();

    /// For a Spool: the folder that the file will be in, or empty.
    std::string ScratchFolder() const;

private:
    OutputFile() = default; // completed, so that whatever fails afterwards is cleaned up
    void Begin();
    void RemoveAbandoned() const;
    void KeepAccess() const;
    bool LinkAs(const std::string& name) const;
    void PutInPlace();
    [[noreturn]] void Refuse() const;
    [[noreturn]] void Refuse(const std::string& why) const;

    std::FILE* file = stdout;
    std::string path; // empty: standard output
    OutputPlace place;
    std::string hiddenName;
    bool isHidden = false; // the file has that name
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
