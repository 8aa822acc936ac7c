#include "SECM_AccessControl/ErrorContext.h"

#include <gtest/gtest.h>

#include <map>

namespace {

TEST(ErrorContextTest, NamesTheSecurityManagersCodes)
{
    const std::map<std::int32_t, std::string> names = {{0x10001, "USER_NOT_EXIST"},
                                                       {0x1001C, "DEF_USER_EXPIRED"},
                                                       {0x1001D, ""},
                                                       {0x1001E, "SERVICE_LOGIN_NO_SECRUE"},
                                                       {0x10026, ""},
                                                       {0x10027, "SMART_CARD_AUTHENTICATION_FAILED"},
                                                       {0x10030, "ERROR_PASSWORD_RESTRICTION"},
                                                       {0x10031, ""},
                                                       {0x10063, "AUTHENTICATION_FAILED_UNIFIED_MSG"},
                                                       {0x10064, ""},
                                                       {0x10000, ""},
                                                       {0, ""},
                                                       {11, ""},
                                                       {-0x10001, ""}};
    for (const auto& [code, name] : names) {
        EXPECT_EQ(err_ctxImpl(1, code, "", "").GetCodeName(), name) << code;
    }
}

TEST(ErrorContextTest, TheRefusalIsKnownByItsCodeAlone)
{
    EXPECT_EQ(noPermissionContext.GetType(), 0);
    EXPECT_EQ(noPermissionContext.GetCode(), 11);
    EXPECT_EQ(noPermissionContext.GetMessageText(), "You have no permission to perform the requested operation");
    EXPECT_TRUE(noPermissionContext.IsSameError(err_ctxImpl(3, 11, "other", "texts")));
    EXPECT_FALSE(noPermissionContext.IsSameError(err_ctxImpl(0, 12, noPermissionContext.GetMessageText(), "")));
}

} // namespace
