#include "tools/acfilter/Printable.h"

std::size_t ControlLength(std::string_view text)
{
    const auto byte = [text](std::size_t index) {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
    };
    if (byte(0) < 0x20 || byte(0) == 0x7f) {
        return 1;
    }
    if (byte(0) == 0xc2 && byte(1) >= 0x80 && byte(1) < 0xa0) {
        return 2; // a second set of control characters
    }
    if (byte(0) == 0xd8 && byte(1) == 0x9c) {
        return 2; // the one mark of direction that is that short
    }
    const bool turnsDirection = (byte(1) == 0x80 && (byte(2) == 0x8e || byte(2) == 0x8f)) ||
                                (byte(1) == 0x80 && byte(2) >= 0xa8 && byte(2) <= 0xae) ||
                                (byte(1) == 0x81 && byte(2) >= 0xa6 && byte(2) <= 0xa9);
    return byte(0) == 0xe2 && turnsDirection ? 3 : 0;
}

std::string Printable(std::string_view text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string printable;
    printable.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = ControlLength(text);
        for (const char character : text.substr(0, length)) {
            const auto byte = static_cast<unsigned char>(character);
            printable.append("\\x").append(1, digits[byte >> 4U]).append(1, digits[byte & 0xfU]);
        }
        if (length == 0) {
            printable += text.front();
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return printable;
}
