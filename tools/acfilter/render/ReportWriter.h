// Who sees what, a row a user: the forms in which it is written.
#pragma once

#include "tools/acfilter/render/ReportRow.h"
#include "tools/acfilter/render/TextOutput.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace secm::acfilter {

/// A file of the configuration.
struct FileDigest {
    std::string file;
    std::string sha256; ///< In hexadecimal.
};

struct ReportHead {
    std::string repository;
    std::vector<std::string> fields; ///< Their names, in the order of the cells.
    std::string ipAddress;           ///< That all users were asked for with.
    bool withoutLogin = false;
    bool showValues = false;               ///< False: only how many there are.
    bool isFull = false;                   ///< False: long lists and texts are cut short in text.
    bool isForTerminal = false;            ///< Control characters are escaped in every format.
    std::vector<FileDigest> configuration; ///< Only for the form that shows them.
    std::string securityDatabase;          ///< Without secrets; empty: it is not named.
    std::string generated;                 ///< When, in UTC.
    std::string data;                      ///< The rows that filters are tried on; empty: none.
    std::optional<std::string> record;     ///< The key of the row that users are asked about.
};

/// What filters did on rows. Memory does not grow with the users.
class RowsSummary {
public:
    void Add(const ReportRow& row);

    /// Sentences for people: refused filters, hide-all filters that show rows, who sees the record, slow filters.
    std::vector<std::string> InWords(const ReportHead& head) const;

    /// Whether the engine refuses a filter, or one that is to hide every record shows rows.
    bool HasFaults() const { return refused.count != 0 || exposed.count != 0; }

private:
    struct Named {
        unsigned long long count = 0;
        std::vector<std::string> first; // names
    };
    static void Add(Named& named, const std::string& user);
    static std::string Listed(const Named& named);

    unsigned long long users = 0;
    unsigned long long seeing = 0;
    Named refused;
    Named exposed;
    std::string firstError;
    std::vector<std::pair<double, std::string>> slowest; // seconds and user, the slowest first
};

/// Writes to an output. Head and output must live as long as it does. Each operation throws std::runtime_error when it
/// cannot write.
class ReportWriter {
public:
    virtual ~ReportWriter() = default;
    virtual void Add(const ReportRow& row) = 0;
    virtual void Finish(const RowsSummary& /*rows*/) {}
};

std::unique_ptr<ReportWriter> MakeTextReport(const ReportHead& head, TextOutput& output);
std::unique_ptr<ReportWriter> MakeCsvReport(const ReportHead& head, TextOutput& output);
std::unique_ptr<ReportWriter> MakeJsonReport(const ReportHead& head, TextOutput& output);
std::unique_ptr<ReportWriter> MakeHtmlReport(const ReportHead& head, TextOutput& output);

/// How many users have each outcome.
class OutcomeCounts {
public:
    void Add(analysis::Outcome outcome) { ++counts.at(static_cast<std::size_t>(outcome)); }
    unsigned long long Of(analysis::Outcome outcome) const { return counts.at(static_cast<std::size_t>(outcome)); }
    unsigned long long All() const { return counts[0] + counts[1] + counts[2] + counts[3]; }

private:
    std::array<unsigned long long, 4> counts{};
};

inline constexpr std::array allOutcomes = {analysis::Outcome::unrestricted, analysis::Outcome::restricted,
                                           analysis::Outcome::hideAll, analysis::Outcome::unknownUser};

} // namespace secm::acfilter
