#include "fuzz/Fuzzing.h"

#include <cstdio>
#include <cstdlib>

namespace secm::fuzzing {

std::string Shown(std::string_view bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string shown = "'";
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (byte == '\\') {
            shown += "\\\\";
        } else if (code < 0x20 || code > 0x7e || byte == '\'') {
            shown += "\\x";
            shown += digits[code >> 4U];
            shown += digits[code & 0xfU];
        } else {
            shown += byte;
        }
    }
    return shown + "'";
}

void Fail(const std::string& what)
{
    std::fprintf(stderr, "\nFAULT FOUND: %s\n", what.c_str());
    std::abort();
}

} // namespace secm::fuzzing
