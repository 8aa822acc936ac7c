// How much of real rows a filter lets through, in words and for programs.
#pragma once

#include "analysis/data/RecordExplanation.h"
#include "tools/acfilter/render/Json.h"

#include <cstdint>
#include <optional>
#include <string>

namespace secm::acfilter {

/// What one filter does on all rows, and on the record that was asked about.
struct RowsSeen {
    std::uint64_t visible = 0;
    std::uint64_t all = 0;
    std::string error;        ///< What the engine says against the filter; then the numbers mean nothing.
    std::optional<bool> sees; ///< The record; no value: none was asked about, or the engine refuses the filter.
    double seconds = 0;       ///< That the engine took.
};

/// "40.0" for 400 of 1000.
std::string Percent(std::uint64_t part, std::uint64_t whole);

/// "400 of 1000 (40.0 %)", or that the engine refuses the filter and why.
std::string RowsText(const RowsSeen& rows);

Json RowsJson(const RowsSeen& rows);
Json RecordJson(const analysis::RecordTrace& record);

} // namespace secm::acfilter
