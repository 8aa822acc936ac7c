// A security database of a suite's users, so that they are asked about on the road of all others.
#pragma once

#include "analysis/Export.h"
#include "analysis/suite/Suite.h"

#include <filesystem>
#include <string>

namespace secm::analysis {

/// Its file stands in the folder for temporary files, and only its owner can read it. The destructor removes it.
class SuiteDatabase {
public:
    /// Throws std::runtime_error when the file cannot be written.
    SECM_ANALYSIS_EXPORT explicit SuiteDatabase(const SuiteUsers& users);
    SECM_ANALYSIS_EXPORT ~SuiteDatabase();
    SuiteDatabase(const SuiteDatabase&) = delete;
    SuiteDatabase& operator=(const SuiteDatabase&) = delete;

    /// For InitSecurityConnection. Valid while this object lives.
    SECM_ANALYSIS_EXPORT std::string ConnectionText() const;

private:
    void Fill(const SuiteUsers& users) const;

    std::filesystem::path folder;
};

} // namespace secm::analysis
