// Which configuration it was: the digest of each of its files, as sha256sum prints it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace secm::acfilter {

struct FileDigest {
    std::string file;
    std::string sha256; ///< In hexadecimal.

    bool operator==(const FileDigest&) const = default;
};

/// Of a configuration file, or of the *.toml files of a folder, in the order in which they are read. Throws
/// std::runtime_error when one cannot be read.
std::vector<FileDigest> DigestsOf(const std::string& configuration);

/// SHA-256 in base64, as a page names what it lets run.
std::string Sha256Base64(std::string_view text);

} // namespace secm::acfilter
