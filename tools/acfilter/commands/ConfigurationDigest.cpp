#include "tools/acfilter/commands/ConfigurationDigest.h"

#include <nettle/base16.h>
#include <nettle/base64.h>
#include <nettle/sha2.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace secm::acfilter {

namespace {

namespace fs = std::filesystem;

using Digest = std::array<std::uint8_t, SHA256_DIGEST_SIZE>;

Digest Sha256(std::string_view text)
{
    sha256_ctx context{};
    sha256_init(&context);
    sha256_update(&context, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
    Digest digest{};
    sha256_digest(&context, digest.size(), digest.data());
    return digest;
}

std::string Hexadecimal(const Digest& digest)
{
    std::string text(BASE16_ENCODE_LENGTH(digest.size()), '\0');
    base16_encode_update(text.data(), digest.size(), digest.data());
    return text;
}

std::string ReadFile(const std::string& path)
{
    // A pipe would be empty for whoever reads it next.
    if (std::error_code none; fs::exists(path, none) && !fs::is_regular_file(path, none)) {
        throw std::runtime_error(path + ": is no file, so it has no digest; name a file, or use another --format");
    }
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    if (!file || !(content << file.rdbuf())) {
        throw std::runtime_error(path + ": cannot be read: " + std::strerror(errno));
    }
    return content.str();
}

} // namespace

std::vector<FileDigest> DigestsOf(const std::string& configuration)
{
    std::vector<std::string> files;
    if (fs::is_directory(configuration)) {
        for (const auto& item : fs::directory_iterator(configuration)) {
            const std::string name = item.path().filename().string();
            if (name.ends_with(".toml") && !name.starts_with('.') && !item.is_directory()) {
                files.push_back(item.path().string());
            }
        }
        std::sort(files.begin(), files.end());
    } else {
        files.push_back(configuration);
    }
    std::vector<FileDigest> digests;
    for (const std::string& file : files) {
        digests.push_back({file, Hexadecimal(Sha256(ReadFile(file)))});
    }
    return digests;
}

std::string Sha256Base64(std::string_view text)
{
    const Digest digest = Sha256(text);
    std::string encoded(BASE64_ENCODE_RAW_LENGTH(digest.size()), '\0');
    base64_encode_raw(encoded.data(), digest.size(), digest.data());
    return encoded;
}

} // namespace secm::acfilter
