// What is written of tests and suites, with texts that mean something in XML, TOML or a shell.
#include "tests/Cases.h"
#include "tools/acfilter/io/BoundedQueue.h"
#include "tools/acfilter/render/SuiteText.h"
#include "tools/acfilter/render/TestWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

using namespace secm::acfilter;
namespace analysis = secm::analysis;

class TextInMemory final : public TextOutput {
public:
    void Write(std::string_view text) override { content += text; }
    std::unique_ptr<WaitingLines> MakeWaitingLines() override { return std::make_unique<Lines>(); }

    std::string content;

private:
    class Lines final : public WaitingLines {
    public:
        void Write(std::string_view added) override { lines += added; }
        void ForEachLine(const std::function<void(std::string_view line)>& handle) override
        {
            for (const std::string& line : secm::testing::Split(lines, "\n")) {
                if (!line.empty()) {
                    handle(line);
                }
            }
        }

    private:
        std::string lines;
    };
};

struct Results {
    Results()
    {
        suite.file = "a b.toml";
        test.name = "it's <\"&\"> \x01\xff\xef\xbf\xbf \xc3\xa4";
        test.place = {"a b.toml", 3, 1};
        result.test = &test;
        result.failures.push_back({"<us\ner>", "sees", "1'&", "visible", "not visible", "a]]>b"});
    }

    std::string Written(std::unique_ptr<TestWriter> (*make)(TextOutput&)) const
    {
        TextInMemory output;
        const auto writer = make(output);
        writer->Add(suite, result);
        TestSummary summary;
        summary.failed = 1;
        writer->Finish(summary);
        return output.content;
    }

    analysis::Suite suite;
    analysis::SuiteTest test;
    analysis::TestResult result;
};

TEST(TestResultsTest, AreWellFormedXml)
{
    const std::string xml = Results().Written(&MakeJunitResults);
    EXPECT_THAT(xml,
                HasSubstr("<testcase name=\"it's &lt;&quot;&amp;&quot;&gt; \\x01\xef\xbf\xbd\xef\xbf\xbd \xc3\xa4\""));
    EXPECT_THAT(xml,
                HasSubstr("message=\"user '&lt;us\\x0aer&gt;': sees '1'&amp;': expected visible; found not visible\""));
    EXPECT_THAT(xml, HasSubstr(">a]]&gt;b</failure>"));
    EXPECT_THAT(xml, Not(HasSubstr("\xff")));
    EXPECT_EQ(xml.find_first_of("\x01\x02\x1b"), std::string::npos);
}

TEST(TestResultsTest, AreOneJsonObjectALine)
{
    const std::string json = Results().Written(&MakeJsonResults);
    EXPECT_EQ(secm::testing::Split(json, "\n").size(), 3U) << json;
    EXPECT_THAT(json, HasSubstr(R"("user":"<us\ner>","what":"sees","name":"1'&","expected":"visible")"));
    EXPECT_THAT(json, HasSubstr("it's <\\\"&\\\"> \\u0001\xef\xbf\xbd"));
}

TEST(TestResultsTest, SayHowToRunATestAgain)
{
    const std::string text = Results().Written([](TextOutput& output) { return MakeTextResults("-c 'x y' ", output); });
    EXPECT_THAT(text, HasSubstr(" again: acfilter test -c 'x y' 'a b.toml' --only 'it'\\''s <\"&\">"));
    EXPECT_EQ(text.find_first_of("\x01\x1b"), std::string::npos);
    for (const auto& [word, shown] : {std::pair("plain-1.toml", "plain-1.toml"),
                                      {"", "''"},
                                      {"a b", "'a b'"},
                                      {"$(x)", "'$(x)'"},
                                      {"it's", "'it'\\''s'"},
                                      {"~", "'~'"},
                                      {"a\nb", "'a\nb'"}}) {
        EXPECT_EQ(ShellWord(word), shown);
    }
}

// A trace of one field, with texts that a suite must keep.
analysis::Trace TraceWith(const std::string& text)
{
    analysis::Trace trace;
    trace.request.userName = text;
    trace.answer = {"x = '" + text + "'", analysis::Outcome::restricted};
    auto rule = std::make_shared<analysis::FieldRule>();
    rule->name = text;
    rule->conditions.emplace_back().text = "x = '%values%'";
    analysis::FieldTrace& field = trace.fields.emplace_back();
    field.rule = rule;
    field.values.push_back({text, text, std::nullopt});
    analysis::ConditionTrace& condition = field.conditions.emplace_back();
    condition.rule = &rule->conditions.front();
    condition.text = trace.answer.filter;
    return trace;
}

TEST(SuiteTextTest, IsReadAsItWasWritten)
{
    const std::string texts[] = {"plain",
                                 "with \"quotes\" and \\",
                                 "line\nend\tand \x01\x1b\x7f",
                                 "it's # no comment",
                                 "\xc3\xa4\xe2\x80\xae",
                                 "a]b = [c]",
                                 "",
                                 "'''",
                                 "\"\"\"",
                                 "%values%",
                                 "\\u0041"};
    std::string content =
        SuiteHeadText({"conf \"x\".toml", "docs", "sqlite3://db=\"s.db\"", "command:run 'it'", "", ""});
    for (const std::string& text : texts) {
        content += SuiteTestText(TraceWith(text.empty() ? "-" : text), std::nullopt);
    }
    char folder[] = "/tmp/suite-text-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string file = std::string(folder) + "/a.toml";
    std::ofstream(file) << content;
    const analysis::Suite suite = analysis::ReadSuite(file);
    std::filesystem::remove_all(folder);

    EXPECT_EQ(suite.configuration, std::string(folder) + "/conf \"x\".toml");
    EXPECT_EQ(suite.data->command, "run 'it'");
    EXPECT_EQ(suite.security, "sqlite3://db=\"" + std::string(folder) + "/s.db\"");
    ASSERT_EQ(suite.tests.size(), std::size(texts));
    for (std::size_t index = 0; index < std::size(texts); ++index) {
        const std::string text = texts[index].empty() ? "-" : texts[index];
        const analysis::SuiteTest& test = suite.tests[index];
        EXPECT_THAT(test.users, ElementsAre(text));
        EXPECT_EQ(test.filter, "x = '" + text + "'");
        EXPECT_EQ(test.values.at(0).field, text);
        EXPECT_THAT(test.values.at(0).values, ElementsAre(text));
    }
    EXPECT_THROW(SuiteTestText(TraceWith("\xff"), std::nullopt), std::runtime_error);
}

TEST(BoundedQueueTest, HandsItemsOverInTheirOrder)
{
    for (const std::size_t capacity : {1U, 2U, 100U}) {
        BoundedQueue<int> queue(capacity);
        std::thread producer([&] {
            for (int item = 0; item < 1000; ++item) {
                EXPECT_TRUE(queue.Push(item));
            }
            queue.End(nullptr);
        });
        int expected = 0;
        while (const std::optional<int> item = queue.Pop()) {
            EXPECT_EQ(*item, expected++);
        }
        producer.join();
        EXPECT_EQ(expected, 1000);
    }
}

TEST(BoundedQueueTest, ThrowsBehindTheLastItem)
{
    BoundedQueue<int> queue(5);
    std::thread producer([&] {
        queue.Push(1);
        queue.End(std::make_exception_ptr(std::runtime_error("the database is gone")));
    });
    EXPECT_EQ(queue.Pop(), 1);
    EXPECT_THROW(queue.Pop(), std::runtime_error);
    producer.join();
}

TEST(BoundedQueueTest, EndsAProducerThatNobodyNeeds)
{
    BoundedQueue<int> queue(2);
    int taken = 0;
    std::thread producer([&] {
        while (queue.Push(taken)) {
            ++taken;
        }
    });
    EXPECT_EQ(queue.Pop(), 0);
    queue.Cancel();
    producer.join(); // does not wait for room
    EXPECT_GE(taken, 1);
}

} // namespace
