// Finds where a file is to be written. Follows the path link by link, so that no other user can redirect it meanwhile.
#pragma once

#include "platform/Descriptor.h"

#include <sys/stat.h>

#include <optional>
#include <string>

namespace secm::acfilter {

struct OutputPlace {
    platform::Descriptor folder;    ///< For openat() and its like. It stays the same folder when that is renamed.
    std::string folderPath;         ///< For messages and temporary files.
    std::string name;               ///< Of the file in the folder; no link.
    std::optional<struct stat> old; ///< Of the file that has this name already.
};

/// Follows `path` to a regular file, or to a name that no file has yet. Throws std::runtime_error when the path
/// - leads to something that is no regular file, or into /proc;
/// - meets a link or file of another user in a folder where everybody may write.
OutputPlace FindOutputPlace(const std::string& path);

} // namespace secm::acfilter
