// Rows of which a table says what each filter lets through.
#pragma once

#include "analysis/data/DataSource.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace secm::testing {

class FakeRows final : public analysis::DataSource {
public:
    using KeySet = std::set<std::string>;

    /// Every key is that of a row. A filter that is not in `filters` is refused.
    FakeRows(KeySet keys, std::map<std::string, KeySet> filters) : all(std::move(keys)), visible(std::move(filters)) {}

    std::uint64_t Count(const analysis::RowFilter& filter) override { return Of(filter).size(); }
    bool Matches(const analysis::RowFilter& filter, const std::string& key) override
    {
        return Of(filter).count(key) != 0;
    }
    std::vector<std::string> Keys(const analysis::RowFilter& filter, std::size_t limit) override
    {
        const KeySet& keys = Of(filter);
        return First({keys.begin(), keys.end()}, limit);
    }
    analysis::RowDifference Difference(const analysis::RowFilter& filter, const analysis::RowFilter& other,
                                       std::size_t limit) override
    {
        std::vector<std::string> keys;
        std::set_difference(Of(filter).begin(), Of(filter).end(), Of(other).begin(), Of(other).end(),
                            std::back_inserter(keys));
        return {keys.size(), First(keys, limit)};
    }
    std::vector<analysis::ColumnValue> Row(const std::string& key) override
    {
        return {{"id", key}, {"Area", "north"}, {"owner", std::nullopt}};
    }

private:
    static std::vector<std::string> First(std::vector<std::string> keys, std::size_t limit)
    {
        keys.resize(std::min(keys.size(), limit));
        return keys;
    }

    const KeySet& Of(const analysis::RowFilter& filter) const
    {
        if (!filter) {
            return all;
        }
        const auto found = visible.find(*filter);
        if (found == visible.end()) {
            throw analysis::FilterRefused("no such filter: " + *filter);
        }
        return found->second;
    }

    const KeySet all;
    const std::map<std::string, KeySet> visible;
};

} // namespace secm::testing
