#include "examples/lucene/DocumentIndex.h"

#include <nlohmann/json.hpp>

#include <Lucene.h> // the headers below need it before them

#include <Collector.h>
#include <Document.h>
#include <Field.h>
#include <IndexReader.h>
#include <IndexSearcher.h>
#include <IndexWriter.h>
#include <KeywordAnalyzer.h>
#include <MatchAllDocsQuery.h>
#include <QueryParser.h>
#include <RAMDirectory.h>
#include <StringUtils.h>

#include <algorithm>
#include <set>
#include <stdexcept>

using Lucene::newLucene;
using Lucene::String;

namespace {

using Lucene::QueryPtr;

constexpr auto version = Lucene::LuceneVersion::LUCENE_30;

/// Lucene finds nothing in a field that no document has, so a misspelt field behind NOT would hide nothing.
/// This parser refuses such a field, and a term without one.
class StrictParser : public Lucene::QueryParser {
public:
    StrictParser(const Lucene::AnalyzerPtr& termsOfText, const std::set<String>& fieldNames)
        : QueryParser(version, L"", termsOfText), fields(fieldNames)
    {
        setLowercaseExpandedTerms(false); // the terms in the index are in upper and lower case
    }

protected:
    // ParseTerm calls one of these for each term.
    QueryPtr getFieldQuery(const String& name, const String& text) override
    {
        return QueryParser::getFieldQuery(Known(name), text);
    }
    QueryPtr getFieldQuery(const String& name, const String& text, int32_t slop) override
    {
        return QueryParser::getFieldQuery(Known(name), text, slop);
    }
    QueryPtr getRangeQuery(const String& name, const String& from, const String& to, bool inclusive) override
    {
        return QueryParser::getRangeQuery(Known(name), from, to, inclusive);
    }
    QueryPtr getWildcardQuery(const String& name, const String& text) override
    {
        const bool isEveryDocument = name == L"*" && text == L"*";
        return QueryParser::getWildcardQuery(isEveryDocument ? name : Known(name), text);
    }
    QueryPtr getPrefixQuery(const String& name, const String& text) override
    {
        return QueryParser::getPrefixQuery(Known(name), text);
    }
    QueryPtr getFuzzyQuery(const String& name, const String& text, double minSimilarity) override
    {
        return QueryParser::getFuzzyQuery(Known(name), text, minSimilarity);
    }

private:
    const String& Known(const String& name) const
    {
        if (fields.count(name) == 0) {
            std::string known;
            for (const String& each : fields) {
                known += (known.empty() ? "" : ", ") + Lucene::StringUtils::toUTF8(each);
            }
            throw std::runtime_error((name.empty() ? "a term without a field; write FIELD:TERM"
                                                   : "there is no field '" + Lucene::StringUtils::toUTF8(name) + "'") +
                                     "; the fields are " + known);
        }
        return name;
    }

    const std::set<String>& fields;
};

/// Marks every document that is found; a search with a limit would rank them.
class FoundDocuments : public Lucene::Collector {
public:
    explicit FoundDocuments(std::size_t count) : isFound(count) {}
    void setScorer(const Lucene::ScorerPtr& /*scorer*/) override {}
    void collect(int32_t document) override { isFound.at(firstOfSegment + static_cast<std::size_t>(document)) = true; }
    void setNextReader(const Lucene::IndexReaderPtr& /*reader*/, int32_t first) override
    {
        firstOfSegment = static_cast<std::size_t>(first);
    }
    bool acceptsDocsOutOfOrder() override { return true; }

    std::vector<bool> isFound;

private:
    std::size_t firstOfSegment = 0;
};

/// What Lucene says of a query, without the query and the list of tokens that could have come next.
std::string Reason(const Lucene::LuceneException& error, const String& query)
{
    String reason = error.getError();
    if (const String start = L"Cannot parse '" + query + L"': "; reason.starts_with(start)) {
        reason.erase(0, start.size());
    }
    reason.erase(std::min(reason.find(L"\nWas expecting"), reason.size()));
    return Lucene::StringUtils::toUTF8(reason);
}

std::string TextOf(const nlohmann::json& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

} // namespace

struct DocumentIndex::Engine {
    const Lucene::AnalyzerPtr analyzer = newLucene<Lucene::KeywordAnalyzer>();
    std::set<String> fields;
    Lucene::IndexSearcherPtr searcher;
};

DocumentIndex::DocumentIndex(const nlohmann::json& rows, const std::string& keyField)
    : engine(std::make_unique<Engine>())
{
    const auto directory = newLucene<Lucene::RAMDirectory>();
    const auto writer =
        newLucene<Lucene::IndexWriter>(directory, engine->analyzer, true, Lucene::IndexWriter::MaxFieldLengthUNLIMITED);
    for (const auto& row : rows) { // Lucene numbers its documents in the order in which they are added
        const auto key = row.find(keyField);
        if (key == row.end() || key->is_null()) {
            throw std::runtime_error("a row has no '" + keyField + "': " + row.dump());
        }
        keys.push_back(TextOf(*key));
        const auto document = newLucene<Lucene::Document>();
        for (const auto& [name, value] : row.items()) {
            const String field = Lucene::StringUtils::toUnicode(name);
            engine->fields.insert(field);
            if (!value.is_null()) {
                document->add(newLucene<Lucene::Field>(field, Lucene::StringUtils::toUnicode(TextOf(value)),
                                                       Lucene::Field::STORE_NO, Lucene::Field::INDEX_NOT_ANALYZED));
            }
        }
        writer->addDocument(document);
    }
    writer->close();
    engine->searcher = newLucene<Lucene::IndexSearcher>(directory, true);
}

DocumentIndex::~DocumentIndex() = default;

std::vector<bool> DocumentIndex::Find(const std::optional<std::string>& query) const
{
    QueryPtr parsed = newLucene<Lucene::MatchAllDocsQuery>();
    if (query) {
        const String text = Lucene::StringUtils::toUnicode(*query);
        try {
            parsed = newLucene<StrictParser>(engine->analyzer, engine->fields)->parse(text);
        } catch (const Lucene::LuceneException& error) {
            throw std::runtime_error(Reason(error, text));
        }
    }
    const auto found = newLucene<FoundDocuments>(keys.size());
    engine->searcher->search(parsed, found);
    return found->isFound;
}
