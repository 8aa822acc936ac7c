// Finds and reads the files of a configuration. Nothing is parsed here.
#pragma once

#include <string>
#include <vector>

namespace secm::platform {

/// `path` itself when it is no folder. Otherwise the files of the folder whose names end in ".toml" and do not begin
/// with a dot, by byte-wise name order. Throws CFG_Error when the folder cannot be read, has no such file, or has one
/// whose name ends in ".toml" only when letter case is ignored.
std::vector<std::string> FindFiles(const std::string& path);

/// The whole content of a regular file, or of an unnamed pipe such as /dev/stdin behind `|`. Throws CFG_Error
/// - when `path` leads to anything else, without waiting for it, or cannot be read to its end;
/// - when CFG_REQUIRE_END is 1 and the last line is not "# end of configuration";
/// - when CFG_REQUIRE_END is not 1, 0 or empty.
std::string ReadFile(const std::string& path);

} // namespace secm::platform
