// Rows that a program knows: one process, which is asked and answers in lines of JSON.
#pragma once

#include "analysis/data/CommandProcess.h"
#include "analysis/data/DataSource.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>

namespace secm::analysis {

class CommandData final : public DataSource {
public:
    /// `command` is split at blanks; there is no shell. Throws DataError.
    CommandData(const std::string& command, unsigned timeoutSeconds);

    std::uint64_t Count(const RowFilter& filter) override;
    bool Matches(const RowFilter& filter, const std::string& key) override;
    std::vector<std::string> Keys(const RowFilter& filter, std::size_t limit) override;
    RowDifference Difference(const RowFilter& filter, const RowFilter& other, std::size_t limit) override;

private:
    nlohmann::json Ask(const nlohmann::json& question, bool hasFilter);
    [[noreturn]] void RefuseAnswer(const std::string& answer, const char* expected) const;
    std::uint64_t CountIn(const nlohmann::json& answer, const char* expected) const;
    std::vector<std::string> KeysIn(const nlohmann::json& answer, std::size_t limit, const char* expected) const;

    const std::vector<std::string> words;
    const std::chrono::seconds limit;
    std::optional<CommandProcess> process; // none after a question that took too long
};

} // namespace secm::analysis
