#pragma once

#include <fmt/core.h>

#include <string>

namespace secm::analysis {

/// Counts what has the same problem and keeps the first, so that one finding stands for all.
struct FirstAndCount {
    void Add(const std::string& one)
    {
        if (count++ == 0) {
            first = one;
        }
    }

    /// "2 NOUNs OF; the first is ONE"
    std::string InWords(const char* noun, const std::string& of = "") const
    {
        return fmt::format("{} {}{}{}; the first is {}", count, noun, count == 1 ? "" : "s", of, first);
    }

    unsigned long long count = 0;
    std::string first;
};

} // namespace secm::analysis
