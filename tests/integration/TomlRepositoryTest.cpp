#include "platform/configuration/CFG_RepositoryServices.h"
#include "tests/Cases.h"
#include "tests/integration/Workspace.h"

#include <cstdlib>
#include <memory>

namespace {

using namespace secm::testing;

class TomlRepositoryTest : public WorkspaceTest {
protected:
    void Load(const std::string& name) const
    {
        setenv("CFG_REPOSITORY", Path(name).c_str(), 1);
        CFG_Factory::Reload();
    }

    /// The answer of the root as text.
    static std::string Ask(const std::string& operation, const std::string& argument)
    {
        const CFG_RepositoryServices* root = CFG_Factory::GetRepositoryServices();
        if (operation == "children") {
            const std::unique_ptr<CFG_NameList> names(root->GetChildNames(argument));
            std::string joined;
            for (int index = 0; names && index < names->GetCount(); ++index) {
                joined += std::string("[") + names->GetName(index) + "]";
            }
            return names ? joined : "null";
        }
        if (operation == "integer") {
            const std::unique_ptr<std::int32_t> integer(root->GetIntValue(argument));
            return integer ? std::to_string(*integer) : "null";
        }
        const RWCString value =
            operation == "value" ? root->GetValue(argument, "absent") : root->GetValueByPath(argument);
        return {value.data(), value.length()};
    }

    static std::string Repeated(std::size_t count, const std::string& piece)
    {
        std::string text;
        while (count-- > 0) {
            text += piece;
        }
        return text;
    }
};

TEST_F(TomlRepositoryTest, Answers)
{
    Write("folder/b.toml", "[z.late]\n[a]\n");
    Write("folder/a.toml",
          "[z.m.deep]\nv = 1\n[z.c]\n[z.m]\ni.x = 1\nk = 2\nb = { y = 1 }\n[z]\nt = \"\\u0000x\"\n\"\xC3\xA4\" = {}\n");
    Write("folder/.hidden.toml", "[hidden]\n");
    Write("folder/notes.toml.bak", "no toml");
    Write("folder/values.toml",
          "text = \" a \"\nbig = 4294967295\nlow = -2147483648\ndigits = \"0042\"\nminus = \"-1\"\n"
          "over = \"4294967296\"\nplus = \"+1\"\nunder = \"-2147483649\"\nblank = \"1 \"\nempty = \"\"\n"
          "letters = \"\"\"\\\n  \xC3\xA4\"\"\"\n");
    Load("folder");
    for (const Lines& row : CaseRows("configuration_reads.txt")) {
        EXPECT_EQ(Ask(row.at(0), row.at(1)), row.at(2)) << row.at(0) << " of '" << row.at(1) << "'";
    }
    const std::unique_ptr<CFG_RepositoryServices> node(CFG_Factory::GetRepositoryServices()->GetSubTree("z\\m"));
    const std::unique_ptr<CFG_RepositoryServices> same(node->GetSubTree(""));
    EXPECT_STREQ(same->GetValueByPath("deep\\v"), "1");
    EXPECT_EQ(node->GetSubTree("k"), nullptr);
}

TEST_F(TomlRepositoryTest, PutsManyFilesTogether)
{
    std::string names;
    for (int file = 10, count = 0; file < 40; ++file) {
        const std::string own = "f" + std::to_string(file);
        std::string text = "[shared]\n" + own + " = 1\n";
        for (const int last = count + file % 4; count < last; ++count) {
            const std::string name = "n" + std::to_string(count * 7919 % 1000); // in no order
            names += "[" + name + "]";
            text += "[t." + name + "]\nv = '" + name + own + "'\n";
        }
        Write("folder/" + own + ".toml", text);
    }
    Load("folder");
    EXPECT_EQ(Ask("children", "t"), names);
    const std::unique_ptr<CFG_NameList> list(CFG_Factory::GetRepositoryServices()->GetChildNames("t"));
    for (int index = 0; index < list->GetCount(); ++index) {
        EXPECT_THAT(Ask("path", std::string("t\\") + list->GetName(index) + "\\v"),
                    testing::StartsWith(std::string(list->GetName(index)) + "f"));
    }
    for (int file = 10; file < 40; ++file) {
        EXPECT_EQ(Ask("path", "shared\\f" + std::to_string(file)), "1");
    }
}

TEST_F(TomlRepositoryTest, CountsNestingBeforeTheParserWould)
{
    const std::string noNames = Repeated(300, ".[{");
    std::string entries;
    for (int number = 0; number < 300; ++number) {
        entries += "n" + std::to_string(number) + ".a = 1, ";
    }
    Write("c.toml", "i = 1 # " + noNames + "\nj = {" + entries + "c = 1}\nt = \"\\\"" + noNames +
                        "\" # \"\nu = '''\n'" + noNames + "''''\n# \"" + noNames + "\n" + Repeated(199, "a.") +
                        "b = 1\n[" + Repeated(98, "c.") + "c]\n" + Repeated(100, "d.") + "d = 1");
    Load("c.toml");
    EXPECT_EQ(Ask("value", "t"), "\"" + noNames);
    EXPECT_EQ(Ask("value", "u"), "'" + noNames + "'");
    EXPECT_EQ(Ask("path", Repeated(199, "a\\") + "b"), "1");
    Write("c.toml", Repeated(1000000, "a.") + "a = 1");
    EXPECT_THROW(Load("c.toml"), CFG_Error);
}

TEST_F(TomlRepositoryTest, AReloadIsAllOrNothing)
{
    Write("c.toml", "[n]\nv = 1\n");
    Load("c.toml");
    CFG_RepositoryServices* root = CFG_Factory::GetRepositoryServices();
    const std::unique_ptr<CFG_RepositoryServices> before(root->GetSubTree("n"));
    Write("c.toml", "[n]\nv = 2\nw = \n");
    EXPECT_THROW(CFG_Factory::Reload(), CFG_Error);
    EXPECT_STREQ(CFG_Factory::GetRepositoryServices()->GetValueByPath("n\\v"), "1");
    Write("c.toml", "[n]\nv = 2\n");
    CFG_Factory::Reload();
    EXPECT_STREQ(CFG_Factory::GetRepositoryServices()->GetValueByPath("n\\v"), "2");
    EXPECT_STREQ(before->GetValue("v", ""), "1");
    unsetenv("CFG_REPOSITORY");
    EXPECT_THROW(CFG_Factory::Reload(), CFG_Error);
}

class BadConfigurationTest : public TomlRepositoryTest, public testing::WithParamInterface<Lines> {};

TEST_P(BadConfigurationTest, IsRefusedWithItsPlace)
{
    std::filesystem::create_directory(Path("f"));
    if (GetParam().at(1) != "-") {
        Write("f/a.toml", GetParam().at(1));
        Write("f/b.toml", GetParam().at(2));
    }
    try {
        Load("f");
        ADD_FAILURE() << "was not refused";
    } catch (const CFG_Error& error) {
        const Lines expected = Split(GetParam().at(3), "{f}");
        EXPECT_THAT(error.what(), testing::StartsWith(Path("f") + expected.front()));
        EXPECT_THAT(error.what(), testing::HasSubstr(expected.size() > 1 ? Path("f") + expected.back() : ""));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, BadConfigurationTest, testing::ValuesIn(CaseRows("bad_configurations.txt")), CaseName);

} // namespace
