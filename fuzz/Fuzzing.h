// What every fuzzer does alike.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

inline std::string_view Bytes(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// `bytes` on one line, for a person to read: between quotes, a backslash doubled, what is not printable as \xNN.
std::string Shown(std::string_view bytes);

/// Ends the process, saying what was found, so that the fuzzer keeps the input.
[[noreturn]] void Fail(const std::string& what);
