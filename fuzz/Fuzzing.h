// What all fuzzers share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace secm::fuzzing {

inline std::string_view Bytes(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// `bytes` on one line, to be read: in quotes, with \\ for a backslash and \xNN for what cannot be printed.
std::string Shown(std::string_view bytes);

/// Prints what was found and aborts, so that the fuzzer keeps the input.
[[noreturn]] void Fail(const std::string& what);

} // namespace secm::fuzzing
