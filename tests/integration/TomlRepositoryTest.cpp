#include "platform/configuration/CFG_RepositoryServices.h"
#include "tests/RowName.h"
#include "tests/integration/Workspace.h"

#include <memory>
#include <optional>
#include <vector>

using testing::ElementsAre;

namespace {

class TomlRepositoryTest : public WorkspaceTest {
protected:
    void Load(const std::string& name) const
    {
        setenv("CFG_REPOSITORY", Path(name).c_str(), 1);
        CFG_Factory::Reload();
    }

    static std::vector<std::string> Children(const std::string& path)
    {
        const std::unique_ptr<CFG_NameList> list(CFG_Factory::GetRepositoryServices()->GetChildNames(path));
        std::vector<std::string> names;
        for (int index = 0; list && index < list->GetCount(); ++index) {
            names.emplace_back(list->GetName(index));
        }
        return list ? names : std::vector<std::string>{"(null)"};
    }

    static std::optional<std::int32_t> Integer(const std::string& key)
    {
        const std::unique_ptr<std::int32_t> integer(CFG_Factory::GetRepositoryServices()->GetIntValue(key));
        return integer ? std::optional(*integer) : std::nullopt;
    }
};

TEST_F(TomlRepositoryTest, ListsChildrenAsAReaderMeetsThem)
{
    Write("folder/b.toml", "[z.late]\n[a]\n");
    Write("folder/a.toml",
          "[z.m.deep]\nv = 1\n[z.c]\n[z.m]\ni.x = 1\nk = 2\nb = { y = 1 }\n[z]\n\"\xC3\xA4\" = {}\n");
    Write("folder/.hidden.toml", "[hidden]\n");
    Write("folder/notes.txt", "no toml");
    std::filesystem::create_directory(Path("folder/sub.toml"));
    Load("folder");
    EXPECT_THAT(Children(""), ElementsAre("z", "a"));
    EXPECT_THAT(Children("z"), ElementsAre("m", "c", "\xC3\xA4", "late"));
    EXPECT_THAT(Children("z\\m"), ElementsAre("deep", "i", "b"));
    EXPECT_THAT(Children("z\\c"), ElementsAre());
    for (const char* nothing : {"Z", "z\\", "\\z", "z\\\\m", "z\\m\\k", "\\"}) {
        EXPECT_THAT(Children(nothing), ElementsAre("(null)")) << nothing;
    }
}

TEST_F(TomlRepositoryTest, GivesTextsAndIntegers)
{
    Write("c.toml", "text = \" a \"\nbig = 4294967295\nlow = -2147483648\ndigits = \"0042\"\nminus = "
                    "\"-1\"\nover = \"4294967296\"\n"
                    "plus = \"+1\"\nblank = \"1 \"\nempty = \"\"\n[n]\nv = \"\\u0000x\"\n[n.deep]\nw = 7\n");
    Load("c.toml");
    const CFG_RepositoryServices* root = CFG_Factory::GetRepositoryServices();
    EXPECT_STREQ(root->GetValue("text", "?"), " a ");
    EXPECT_STREQ(root->GetValue("big", "?"), "4294967295");
    for (const char* absent : {"Text", "n", "n\\v", ""}) {
        EXPECT_STREQ(root->GetValue(absent, "?"), "?") << absent;
    }
    EXPECT_EQ(root->GetValueByPath("n\\v").length(), 2U);
    EXPECT_STREQ(root->GetValueByPath("n\\deep\\w"), "7");
    EXPECT_STREQ(root->GetValueByPath("text"), " a ");
    for (const char* absent : {"n", "n\\deep", "\\text", "text\\x", "n\\deep\\w\\", ""}) {
        EXPECT_EQ(root->GetValueByPath(absent).length(), 0U) << absent;
    }
    EXPECT_EQ(Integer("big"), -1);
    EXPECT_EQ(Integer("low"), INT32_MIN);
    EXPECT_EQ(Integer("digits"), 42);
    EXPECT_EQ(Integer("minus"), -1);
    for (const char* none : {"over", "plus", "blank", "empty", "text", "n", "absent"}) {
        EXPECT_EQ(Integer(none), std::nullopt) << none;
    }
    const std::unique_ptr<CFG_RepositoryServices> node(root->GetSubTree("n"));
    const std::unique_ptr<CFG_RepositoryServices> same(node->GetSubTree(""));
    EXPECT_STREQ(same->GetValueByPath("deep\\w"), "7");
    EXPECT_EQ(root->GetSubTree("text"), nullptr);
}

TEST_F(TomlRepositoryTest, AReloadIsAllOrNothing)
{
    Write("c.toml", "[n]\nv = 1\n");
    Load("c.toml");
    CFG_RepositoryServices* root = CFG_Factory::GetRepositoryServices();
    const std::unique_ptr<CFG_RepositoryServices> before(root->GetSubTree("n"));
    Write("c.toml", "[n]\nv = 2\nw = \n");
    EXPECT_THROW(CFG_Factory::Reload(), CFG_Error);
    EXPECT_STREQ(root->GetValueByPath("n\\v"), "1");
    Write("c.toml", "[n]\nv = 2\n");
    CFG_Factory::Reload();
    EXPECT_STREQ(CFG_Factory::GetRepositoryServices()->GetValueByPath("n\\v"), "2");
    EXPECT_STREQ(before->GetValue("v", ""), "1");
    unsetenv("CFG_REPOSITORY");
    EXPECT_THROW(CFG_Factory::Reload(), CFG_Error);
}

struct BadConfiguration {
    const char* name;
    std::string first;  ///< a.toml in a folder; "-": there is none.
    std::string second; ///< b.toml
    const char* error;  ///< Behind the folder's path.
};

class BadConfigurationTest : public TomlRepositoryTest,
                             public testing::WithParamInterface<BadConfiguration> {};

TEST_P(BadConfigurationTest, IsRefusedWithItsPlace)
{
    std::filesystem::create_directory(Path("f"));
    if (GetParam().first != "-") {
        Write("f/a.toml", GetParam().first);
        Write("f/b.toml", GetParam().second);
    }
    try {
        Load("f");
        ADD_FAILURE() << "was taken";
    } catch (const CFG_Error& error) {
        const std::string message = error.what();
        EXPECT_EQ(message.rfind(Path("f"), 0), 0U) << message;
        EXPECT_THAT(message.substr(Path("f").size()), testing::StartsWith(GetParam().error));
        EXPECT_EQ(message.find('\n'), std::string::npos);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Each, BadConfigurationTest,
    testing::ValuesIn(std::vector<BadConfiguration>{
        {"Syntax", "", "[a]\nb = \"x\n", "/b.toml:2:7: "},
        {"InvalidUtf8", "x = \"\xff\"", "", "/a.toml:1:"},
        {"SameKeyTwice", "a = 1\na = 2\n", "", "/a.toml:2:"},
        {"Boolean", "[n]\n  b = true\n", "",
         "/a.toml:2:3: 'b' must be a text or a whole number, found a boolean"},
        {"Float", "b = 1.5", "",
         "/a.toml:1:1: 'b' must be a text or a whole number, found a floating-point number"},
        {"Date", "b = 2026-01-01", "",
         "/a.toml:1:1: 'b' must be a text or a whole number, found a date or time"},
        {"Array", "b = [1]", "", "/a.toml:1:1: 'b' must be a text or a whole number, found an array"},
        {"ArrayOfTables", "[[b]]", "", "/a.toml:1:3: 'b' must be a text or a whole number, found an array"},
        {"IntegerTooBig", "b = 4294967296", "",
         "/a.toml:1:1: 'b' must be from -2147483648 to 4294967295, found 4294967296"},
        {"IntegerTooSmall", "b = -2147483649", "", "/a.toml:1:1: 'b' must be from -2147483648 to 4294967295"},
        {"EmptyName", "[n]\n\"\" = 1", "", "/a.toml:2:1: a name must not be empty"},
        {"BackslashInAName", "'a\\b' = 1", "", "/a.toml:1:1: the name 'a\\b' must contain neither"},
        {"NulInAName", "\"a\\u0000b\" = 1", "", "/a.toml:1:1: the name 'a' must contain neither"},
        {"ValueInTwoFiles", "[n]\nv = 1", "[n]\n\nv = 1",
         "/b.toml:3:1: 'v' is a value here and a value already at "},
        {"ValueThenNode", "[n]\nv = 1", "[n.v]", "/b.toml:1:4: 'v' is a table here and a value already at "},
        {"NodeThenValue", "[n.v]", "n.v = 1", "/b.toml:1:3: 'v' is a value here and a table already at "},
        {"EmptyFolder", "-", "", ":1:1: the folder holds no *.toml file"},
    }),
    RowName());

} // namespace
