// Reading connection texts, and showing them without secrets.
#include "platform/database/ConnectionText.h"
#include "tests/Cases.h"

#include <stdexcept>

namespace {

using namespace secm::testing;

using namespace secm::platform;

TEST(ConnectionTextTest, ShowsNothingThatCouldBeSecret)
{
    for (const Lines& row : CaseRows("connection_texts.txt")) {
        EXPECT_EQ(ShownConnectionText(row.at(0)), row.at(1));
        try {
            DatabaseAddressOf(row.at(0), 5);
            EXPECT_EQ("-", row.at(2)) << row.at(0);
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(row.at(2))) << row.at(0);
            EXPECT_THAT(error.what(), testing::Not(testing::HasSubstr("cret"))) << row.at(0);
        }
    }
}

TEST(ConnectionTextTest, TheTextOverridesOurSettings)
{
    const auto settings = [](const char* text) {
        return std::get<PostgreSqlAddress>(DatabaseAddressOf(text, 7)).settings;
    };
    EXPECT_EQ(settings("postgresql://host = db  gssencmode=prefer connect_timeout=3 "),
              "connect_timeout='3' host='db' gssencmode='prefer' fallback_application_name='SECM_AccessControl' "
              "tcp_user_timeout='7000' client_encoding='UTF8'");
    EXPECT_EQ(settings("postgresql://client_encoding=LATIN1 password='it\\'s a\\\\' user=b options='-c a=b -c c=d'"),
              "user='b' password='it\\'s a\\\\' options='-c a=b -c c=d' gssencmode='disable' "
              "fallback_application_name='SECM_AccessControl' connect_timeout='7' tcp_user_timeout='7000' "
              "client_encoding='LATIN1'");
    const auto sqlite = std::get<SqliteAddress>(DatabaseAddressOf("sqlite3://db=\"a b\" shared_cache=yes", 7));
    EXPECT_EQ(sqlite.file, "a b");
    EXPECT_EQ(sqlite.timeoutSeconds, 7U);
    EXPECT_TRUE(sqlite.sharesCache);
    EXPECT_EQ(std::get<SqliteAddress>(DatabaseAddressOf("sqlite3://timeout=3 db=a", 7)).timeoutSeconds, 3U);
}

TEST(ConnectionTextTest, OnlyLocalAndVerifiedServersCannotBeImpersonated)
{
    for (const char* local : {"", "127.0.0.1", "127.1.2.3", "::1"}) {
        EXPECT_FALSE(CanBeImpersonated(local, "prefer")) << local;
    }
    for (const char* mode : {"", "disable", "prefer", "require", "verify-ca"}) {
        EXPECT_TRUE(CanBeImpersonated("192.0.2.1", mode)) << mode;
        EXPECT_TRUE(CanBeImpersonated("2001:db8::127.1", mode)) << mode;
    }
    EXPECT_FALSE(CanBeImpersonated("192.0.2.1", "verify-full"));
}

} // namespace
