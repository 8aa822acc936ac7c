// The text type of the configuration repository's interface: a string of any bytes, NUL included.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

class RWCString {
public:
    /// `text` must not be null.
    RWCString(const char* text) : bytes(text) {}
    RWCString(const char* text, std::size_t length) : bytes(text, length) {}
    RWCString(std::string text) : bytes(std::move(text)) {}

    std::size_t length() const { return bytes.size(); }
    const char* data() const { return bytes.data(); }

    /// The text up to its first NUL, valid while this object lives unchanged.
    operator const char*() const { return bytes.c_str(); }

    friend RWCString operator+(const RWCString& left, const char* right) { return {left.bytes + right}; }

private:
    std::string bytes;
};
