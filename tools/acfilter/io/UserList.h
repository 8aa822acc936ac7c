// Lists of user names, as administrators write them or other programs pipe them.
#pragma once

#include <functional>
#include <istream>
#include <string>

namespace secm::acfilter {

using UserHandler = std::function<void(const std::string& userName)>;

/// Calls `handle` for each name of `lines`, one after the other: one name a line; LF or CR LF ends it and the last may
/// lack it; empty lines are passed over, and so is a byte order mark at the start. Blanks are part of a name. `place`
/// names the list in errors. Throws std::runtime_error at a line that holds a NUL byte, or a CR that is not directly
/// before LF, and when `lines` breaks off; what `handle` throws passes through.
void ForEachLine(std::istream& lines, const std::string& place, const UserHandler& handle);

/// Throws std::runtime_error when standard input was closed when the program started.
void RequireStandardInput();

/// Calls `handle` for each name of the file at `path`; of standard input when `path` is "-". Throws std::runtime_error
/// as ForEachLine does, and also when the list cannot be read or names nobody.
void ForEachUserOfFile(const std::string& path, const UserHandler& handle);

} // namespace secm::acfilter
