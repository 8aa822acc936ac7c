// SHA-256 digests in the two ways in which a page writes them.
#pragma once

#include <string>
#include <string_view>

namespace secm::acfilter {

/// In hexadecimal, as sha256sum prints it.
std::string Sha256Hexadecimal(std::string_view text);

/// In base64, as a page names the style and the script that it allows.
std::string Sha256Base64(std::string_view text);

} // namespace secm::acfilter
