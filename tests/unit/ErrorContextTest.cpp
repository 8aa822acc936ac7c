#include "SECM_AccessControl/ErrorContext.h"
#include "tests/Cases.h"

namespace {

using namespace secm::testing;

TEST(ErrorContextTest, NamesTheSecurityManagersCodes)
{
    for (const Lines& row : CaseRows("result_codes.txt")) {
        const auto code = static_cast<std::int32_t>(std::stoll(row.at(0), nullptr, 16));
        EXPECT_EQ(err_ctxImpl(1, code, "", "").GetCodeName(), row.at(1)) << row.at(0);
    }
}

TEST(ErrorContextTest, TheRefusalIsKnownByItsCodeAlone)
{
    EXPECT_EQ(noPermissionContext.GetType(), 0);
    EXPECT_EQ(err_ctxImpl(3, 11, "", "").GetType(), 3);
    EXPECT_EQ(noPermissionContext.GetCode(), 11);
    EXPECT_EQ(noPermissionContext.GetMessageText(), "You have no permission to perform the requested operation");
    EXPECT_TRUE(noPermissionContext.IsSameError(err_ctxImpl(3, 11, "other", "texts")));
    EXPECT_FALSE(noPermissionContext.IsSameError(err_ctxImpl(0, 12, noPermissionContext.GetMessageText(), "")));
}

} // namespace
