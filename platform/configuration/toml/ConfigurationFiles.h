// The files of a configuration, and what they hold, before anything is parsed.
#pragma once

#include <string>
#include <vector>

namespace configuration {

/// `path` itself, or the files of the folder `path` in the order in which they are read: those whose names end in
/// ".toml" and do not begin with a dot. Throws CFG_Error when the folder cannot be read, holds none, or holds one whose
/// name differs from such a name by letter case alone.
std::vector<std::string> FindFiles(const std::string& path);

/// The whole content of a regular file, or of a pipe without a name such as /dev/stdin behind `|`. Throws CFG_Error for
/// whatever else `path` leads to, without waiting for it; for what cannot be read to its end; and for a file without
/// the end line where CFG_REQUIRE_END is 1, or for any file where it is neither that nor 0 nor empty.
std::string ReadFile(const std::string& path);

} // namespace configuration
