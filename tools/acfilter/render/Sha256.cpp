#include "tools/acfilter/render/Sha256.h"

#include <nettle/base16.h>
#include <nettle/base64.h>
#include <nettle/sha2.h>

#include <array>
#include <cstdint>

namespace secm::acfilter {

namespace {

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

} // namespace

std::string Sha256Hexadecimal(std::string_view text)
{
    const Digest digest = Sha256(text);
    std::string encoded(BASE16_ENCODE_LENGTH(digest.size()), '\0');
    base16_encode_update(encoded.data(), digest.size(), digest.data());
    return encoded;
}

std::string Sha256Base64(std::string_view text)
{
    const Digest digest = Sha256(text);
    std::string encoded(BASE64_ENCODE_RAW_LENGTH(digest.size()), '\0');
    base64_encode_raw(encoded.data(), digest.size(), digest.data());
    return encoded;
}

} // namespace secm::acfilter
