// Tables of cases in text files. A row is a line: columns between " | ", of which the first names the case. Empty lines
// and lines that begin with "#" are skipped; \n, \t, \0, \\ and \xNN stand for bytes.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace secm::testing {

using Lines = std::vector<std::string>;

/// Every line of a file in tests/cases, comments aside.
Lines CaseLines(const std::string& file);
std::vector<Lines> CaseRows(const std::string& file);

std::string Unescaped(const std::string& text);
Lines Split(const std::string& text, const std::string& separator);

/// For INSTANTIATE_TEST_SUITE_P: names a row by its first column.
inline std::string CaseName(const ::testing::TestParamInfo<Lines>& row)
{
    return row.param.front();
}

} // namespace secm::testing
