#include "SECM_AccessControl/ErrorContext.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace {

struct NamedCode {
    std::int32_t code;
    std::string_view name;
};

// Sorted by code for binary search. The names are those of the security manager, with their misspellings, so
// do not correct them.
constexpr auto resultCodes = std::to_array<NamedCode>({
    {0x10001, "USER_NOT_EXIST"},
    {0x10002, "USER_LOCKED"},
    {0x10003, "USER_IN_TIMEOUT"},
    {0x10004, "USER_ALREADY_LOGGED_IN"},
    {0x10005, "USER_NOT_ALLOWED_TO_UNLOCK"},
    {0x10006, "USER_NOT_ALLOWED_FOR_APP"},
    {0x10007, "USER_NOT_ALLOWED_THIS_MOMENT"},
    {0x10008, "USER_NOT_ALLOWED_THIS_COMPUTER"},
    {0x10009, "ACCOUNT_RESTRICTION"},
    {0x1000A, "PASSWORD_NOT_CORRECT"},
    {0x1000B, "PASSWORD_NOT_LEGAL_CONVENTION"},
    {0x1000C, "PASSWORD_NOT_LEGAL_SIMILAR"},
    {0x1000D, "PASSWORD_EXPIRED"},
    {0x1000E, "PASSWORD_NOT_MATCH_CONFIRMATION"},
    {0x1000F, "PASSWORD_MUST_CHANGE"},
    {0x10010, "ANSWER_NOT_CORRECT"},
    {0x10011, "MISSING_INFO_IN_REPOSITORY"},
    {0x10012, "EMERGENCY_OPERATOR_EXPIRED"},
    {0x10013, "USER_EXPIRED"},
    {0x10014, "FAIL_TO_RUN_METHOD"},
    {0x10015, "COMMUNICATION_EXCEPTION"},
    {0x10016, "AUTHENTICATION_EXCEPTION"},
    {0x10017, "NO_AUTH_VIA_URL"},
    {0x10018, "DEF_PASSWORD_EXPIRED"},
    {0x10019, "DEF_PASSWORD_MUST_CHANGE"},
    {0x1001A, "DEF_PASSWORD_NOT_CORRECT"},
    {0x1001B, "DEF_USER_LOCKED"},
    {0x1001C, "DEF_USER_EXPIRED"},
    {0x1001E, "SERVICE_LOGIN_NO_SECRUE"},
    {0x1001F, "SERVICE_LOGIN_NO_CERT"},
    {0x10020, "SERVICE_LOGIN_NO_NAME"},
    {0x10021, "FAIL_TO_RUN_METHOD_DO_NOT_DISPLAY"},
    {0x10022, "USER_NOT_ALLOWED_OTHER_USERS"},
    {0x10023, "GROUP_ERROR"},
    {0x10024, "USER_SID_AUTHENTICATION_FAILED"},
    {0x10025, "USER_PENDING"},
    {0x10027, "SMART_CARD_AUTHENTICATION_FAILED"},
    {0x10028, "SMART_CARD_READ_FAILED"},
    {0x1002C, "MISSING_AUTHENTICATION_DETAILS"},
    {0x1002D, "AUTHENTICATION_FAILED"},
    {0x1002E, "INCORRECT_AUTHENTICATION_DATA"},
    {0x1002F, "INVALID_CODE"},
    {0x10030, "ERROR_PASSWORD_RESTRICTION"},
    {0x10063, "AUTHENTICATION_FAILED_UNIFIED_MSG"},
});

constexpr bool IsBefore(const NamedCode& left, const NamedCode& right)
{
    return left.code < right.code;
}
static_assert(std::is_sorted(resultCodes.begin(), resultCodes.end(), IsBefore));

} // namespace

const err_ctxImpl noPermissionContext(0, 11, "You have no permission to perform the requested operation", "");

std::string GetResultCodeName(std::int32_t code)
{
    const auto found = std::lower_bound(resultCodes.begin(), resultCodes.end(), NamedCode{code, {}}, IsBefore);
    return std::string(found != resultCodes.end() && found->code == code ? found->name : std::string_view());
}

err_ctx::~err_ctx() = default;

err_ctxImpl::err_ctxImpl(std::int32_t type, std::int32_t code, std::string messageText, std::string detail)
    : errorType(type), errorCode(code), message(std::move(messageText)), detailText(std::move(detail))
{
}

bool err_ctxImpl::IsSameError(const err_ctx& other) const
{
    return errorCode == other.GetCode();
}

std::int32_t err_ctxImpl::GetType() const
{
    return errorType;
}

std::int32_t err_ctxImpl::GetCode() const
{
    return errorCode;
}

std::string err_ctxImpl::GetMessageText() const
{
    return message;
}

std::string err_ctxImpl::GetCodeName() const
{
    return GetResultCodeName(errorCode);
}
