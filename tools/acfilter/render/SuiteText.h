// A suite as TOML, from answers.
#pragma once

#include "analysis/suite/SuiteRun.h"

#include <cstdint>
#include <optional>
#include <string>

namespace secm::acfilter {

struct SuiteHead {
    std::string configuration; ///< The paths and connection texts from the folder of the suite.
    std::string repository;
    std::string security;
    std::string data; ///< sqlite3://..., postgresql://... or command:...; empty: no rows.
    std::string table;
    std::string key;
};

std::string SuiteHeadText(const SuiteHead& head);

/// A test of the answer: the outcome, the values of each field and, where rows are counted, how many are visible; else
/// the filter. Throws std::runtime_error when a text is not UTF-8, which TOML cannot hold.
std::string SuiteTestText(const analysis::Trace& trace, std::optional<std::uint64_t> count);

} // namespace secm::acfilter
