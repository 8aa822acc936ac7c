#include "tools/acfilter/render/ReportWriter.h"
#include "tools/acfilter/render/TextLayout.h"

#include <fmt/format.h>

#include <algorithm>

namespace secm::acfilter {

namespace {

constexpr std::size_t mostNamed = 5;
constexpr double slowSeconds = 0.1;

const char* Users(unsigned long long count)
{
    return count == 1 ? "user" : "users";
}

} // namespace

void RowsSummary::Add(Named& named, const std::string& user)
{
    ++named.count;
    if (named.first.size() < mostNamed) {
        named.first.push_back(user);
    }
}

std::string RowsSummary::Listed(const Named& named)
{
    std::string list;
    for (const std::string& user : named.first) {
        list += (list.empty() ? "" : ", ") + Quoted(user);
    }
    return list + (named.count > named.first.size() ? ", ..." : "");
}

void RowsSummary::Add(const ReportRow& row)
{
    if (!row.rows) {
        return;
    }
    ++users;
    seeing += row.rows->sees.value_or(false) ? 1U : 0U;
    if (!row.rows->error.empty()) {
        firstError = refused.count == 0 ? row.rows->error : firstError;
        Add(refused, row.user);
    }
    if (row.ShowsHidden()) {
        Add(exposed, row.user);
    }
    if (row.rows->seconds >= slowSeconds) {
        const std::pair<double, std::string> entry(row.rows->seconds, row.user);
        slowest.insert(std::upper_bound(slowest.begin(), slowest.end(), entry, std::greater<>()), entry);
        slowest.resize(std::min(slowest.size(), mostNamed));
    }
}

std::vector<std::string> RowsSummary::InWords(const ReportHead& head) const
{
    std::vector<std::string> sentences;
    if (refused.count != 0) {
        sentences.push_back(fmt::format("The engine refuses the filters of {} {}: {}; it says of the first: {}",
                                        refused.count, Users(refused.count), Listed(refused), firstError));
    }
    if (exposed.count != 0) {
        sentences.push_back(fmt::format("hide_all_filter does not hide all rows from {} {}: {}", exposed.count,
                                        Users(exposed.count), Listed(exposed)));
    }
    if (head.record) {
        sentences.push_back(
            fmt::format("{} of {} {} see the record {}", seeing, users, Users(users), Quoted(*head.record)));
    }
    for (const auto& [seconds, user] : slowest) {
        sentences.push_back(fmt::format("Slow: the filter of {} takes {:.2f} s", Quoted(user), seconds));
    }
    return sentences;
}

} // namespace secm::acfilter
