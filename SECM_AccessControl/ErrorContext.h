// Describes an error: type, code, name of the code, message. The module defines one error, "no permission". Only the
// result codes of the security manager have names.
#pragma once

#include <cstdint>
#include <string>

/// Immutable: any thread may call any operation at any time.
class err_ctx {
public:
    virtual ~err_ctx();

    /// True when `other` has the same code; type and texts are not compared.
    virtual bool IsSameError(const err_ctx& other) const = 0;
    virtual std::int32_t GetType() const = 0;
    virtual std::int32_t GetCode() const = 0;
    virtual std::string GetMessageText() const = 0;

    /// The name that the security manager gives to the code; empty for a code without a name.
    virtual std::string GetCodeName() const = 0;
};

class err_ctxImpl : public err_ctx {
public:
    err_ctxImpl(std::int32_t type, std::int32_t code, std::string messageText, std::string detail);

    bool IsSameError(const err_ctx& other) const override;
    std::int32_t GetType() const override;
    std::int32_t GetCode() const override;
    std::string GetMessageText() const override;
    std::string GetCodeName() const override;

private:
    std::int32_t errorType;
    std::int32_t errorCode;
    std::string message;
    std::string detailText;
};

/// Lives as long as the library is loaded.
extern const err_ctxImpl noPermissionContext;

/// The name of a result code of the security manager; empty for any other code.
std::string GetResultCodeName(std::int32_t code);
