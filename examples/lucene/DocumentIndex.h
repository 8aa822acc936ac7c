// Rows in an index of Lucene, searched by queries. Each column is a field, whose value is one term as it stands.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

class DocumentIndex {
public:
    /// `rows` is an array of objects, such as `sqlite3 -json` prints; a field that is null is not in the index.
    /// `keyField` names the field whose value tells rows apart. Throws std::runtime_error.
    DocumentIndex(const nlohmann::json& rows, const std::string& keyField);
    ~DocumentIndex();
    DocumentIndex(const DocumentIndex&) = delete;
    DocumentIndex& operator=(const DocumentIndex&) = delete;

    /// The key of each row, in the order of the rows.
    const std::vector<std::string>& Keys() const { return keys; }

    /// For each row, whether the query finds it; without a query every row is found. The query is UTF-8.
    /// Throws std::exception with the reason for which Lucene refuses the query.
    std::vector<bool> Find(const std::optional<std::string>& query) const;

private:
    struct Engine; // keeps the headers of Lucene out of the other sources

    std::vector<std::string> keys;
    std::unique_ptr<Engine> engine;
};
