// What is known of an error: a kind, a code with its name, and a message. The module carries one, the refusal for
// want of permission; the codes that have names are those of the security manager.
#pragma once

#include <cstdint>
#include <string>

/// Only looked at, so any thread may ask at any time.
class err_ctx {
public:
    virtual ~err_ctx();

    /// Whether `other` has the same code; kind and texts do not count.
    virtual bool IsSameError(const err_ctx& other) const = 0;
    virtual std::int32_t GetType() const = 0;
    virtual std::int32_t GetCode() const = 0;
    virtual std::string GetMessageText() const = 0;

    /// The security manager's name of the code; empty when it has none.
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

/// There from the loading of the library to its unloading.
extern const err_ctxImpl noPermissionContext;

/// The name of a result code of the security manager; empty when the code is none of its own.
std::string GetResultCodeName(std::int32_t code);
