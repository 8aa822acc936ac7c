// Where a file is to be written, found link by link, so that nobody else leads it somewhere else.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

/// Owns an open descriptor.
class Descriptor {
public:
    explicit Descriptor(int openDescriptor = -1) : descriptor(openDescriptor) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept : descriptor(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;

    int Get() const { return descriptor; }
    int Release();

private:
    int descriptor;
};

struct OutputPlace {
    Descriptor folder; ///< Good for the *at calls only. A folder that is renamed or replaced meanwhile stays this one.
    std::string folderPath;         ///< For messages, and for files that are only needed for a while.
    std::string name;               ///< Of the file in the folder; no link.
    std::optional<struct stat> old; ///< Of the file that is there already.
};

/// Follows `path` to a file, or to a name in a folder that no file has yet. Throws std::runtime_error when it leads to
/// anything but a file, into /proc, or in a folder that everybody may write to by a link or to a file of somebody else.
OutputPlace FindOutputPlace(const std::string& path);
