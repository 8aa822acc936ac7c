#include "SECM_AccessControl/AccessControl_CodesDisplayNameFunction.h"
#include "SECM_AccessControl/AccessControl_SiteIdToIssuerFunction.h"
#include "tests/unit/ScriptedPlatform.h"

using testing::ElementsAre;

namespace {

const std::string sites = "zarvona\\system\\sites\\";
const std::string issuer = "applications\\norvale\\pix\\assigning_authority\\value";
const std::string codes = "zarvona\\system\\applications\\codes\\";

class ValuesFunctionsTest : public ScriptedTest {
protected:
    void Make(ValuesFunctionFactory factory, const std::string& configuration, bool answer)
    {
        function.reset(factory());
        EXPECT_EQ(function->Initialize(configuration), answer);
        script.configuration.clear(); // mapping must not come back here
    }
    std::string Map(const std::string& value)
    {
        std::string mapped = "left over";
        EXPECT_TRUE(function->MapValue(value, mapped));
        return mapped;
    }
    std::unique_ptr<AccessControl_ValuesFunctionInterface> function;
};

TEST_F(ValuesFunctionsTest, CodesMapToTheirDisplayNamesOrToNothing)
{
    Configure(codes + "kinds\\ab\\display_name", "letter");
    Configure(codes + "kinds\\empty\\display_name", "");
    Configure(codes + "kinds\\nameless\\other", "x");
    Configure(codes + "others\\zz\\display_name", "elsewhere");
    Make(&AccessControl_CodesDisplayNameFunction::CreateInstance, "kinds", true);
    EXPECT_THAT((Lines{Map("ab"), Map("AB"), Map("empty"), Map("nameless"), Map("zz"), Map("")}),
                ElementsAre("letter", "", "", "", "", ""));
}

TEST_F(ValuesFunctionsTest, SitesMapToTheirIssuersOrToTheDefault)
{
    Configure(sites + "s1\\" + issuer, "ONE");
    Configure(sites + "s2\\" + issuer, "");
    Configure(sites + "s3\\name", "x");
    Configure("zarvona\\system\\" + issuer, "DEFAULT");
    Make(&AccessControl_SiteIdToIssuerFunction::CreateInstance, "ignored", true);
    EXPECT_THAT((Lines{Map("s1"), Map("S1"), Map("s2"), Map("s3"), Map("")}),
                ElementsAre("ONE", "DEFAULT", "DEFAULT", "DEFAULT", "DEFAULT"));
    EXPECT_THAT(TakeJournal(), ElementsAre("GetRepositoryServices", "GetChildNames " + sites,
                                           "GetValueByPath " + sites + "s1\\" + issuer,
                                           "GetValueByPath " + sites + "s2\\" + issuer,
                                           "GetValueByPath " + sites + "s3\\" + issuer,
                                           "GetValueByPath zarvona\\system\\" + issuer, "delete names"));
}

TEST_F(ValuesFunctionsTest, WithoutTablesEverythingMapsToNothing)
{
    Make(&AccessControl_SiteIdToIssuerFunction::CreateInstance, "", true);
    EXPECT_EQ(Map("s1"), "");
    Make(&AccessControl_CodesDisplayNameFunction::CreateInstance, "kinds", false);
    EXPECT_EQ(Map("ab"), "");
    EXPECT_EQ(TakeJournal().back(),
              "7 AccessControl_CodesDisplayNameFunction::Initialize: Couldn't find codes subtree\n");
    script.hasRepositoryServices = false;
    Make(&AccessControl_SiteIdToIssuerFunction::CreateInstance, "", false);
    EXPECT_EQ(TakeJournal().back(),
              "3 AccessControl_SiteIdToIssuerFunction::Initialize: Could not create CFG instance\n");
    Make(&AccessControl_CodesDisplayNameFunction::CreateInstance, "", false);
    EXPECT_EQ(TakeJournal().back(),
              "3 AccessControl_CodesDisplayNameFunction::Initialize: Could not create CFG instance\n");
}

} // namespace
