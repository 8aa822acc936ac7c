// Writes an answer to standard output, or to a file that appears only when it is complete.
#pragma once

#include "tools/acfilter/io/OutputPlace.h"

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace secm::acfilter {

/// Each operation throws std::runtime_error when the output cannot be written.
class OutputFile {
public:
    /// Writes to standard output when there is no path. Otherwise writes an unnamed file, to which Finish gives the
    /// name. When the program ends before Finish, an older file stays and no new file is left. Where the file system
    /// has no unnamed files, a hidden file (".NAME.acfilter-unfinished") is written in the same folder; when the
    /// program is killed, the next OutputFile for the same path removes it.
    explicit OutputFile(const std::optional<std::string>& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(std::string_view text);

    /// Writes what is buffered and puts the file into its place. Only the owner may read a new file. A file that
    /// replaces another one takes over its owner, group, mode and access control list. A file that has appeared since
    /// the constructor is not replaced: that throws.
    void Finish();

    /// For TemporaryLines: the folder that the file will be in, or empty.
    std::string ScratchFolder() const;

private:
    OutputFile() = default; // delegated to, so that the destructor runs when the rest of the constructor throws
    void Begin();
    void Create();
    void Lock();
    void RemoveAbandoned() const;
    void KeepAccess() const;
    bool LinkAs(const std::string& name) const;
    void PlaceNew();
    void ReplaceOld();
    [[noreturn]] void Refuse() const;
    [[noreturn]] void Refuse(const std::string& why) const;

    std::FILE* file = stdout;
    std::string path; // empty: standard output
    OutputPlace place;
    std::string hiddenName;
    bool isHidden = false; // the file has hiddenName
};

} // namespace secm::acfilter
