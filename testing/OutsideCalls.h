// The calls that the module makes to the outside: recorded in order, and one of them made to fail.
#pragma once

#include "platform/security_manager/PermissionBase.h"

#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace secm::testing {

class OutsideCalls {
public:
    /// A call that only asks. Throws std::runtime_error when it is the call to fail.
    template <class... Parts>
    void Ask(const Parts&... parts)
    {
        Make(recordsQuestions, parts...);
    }

    /// A call that changes something outside: a log-in, a log-out, a release. Throws as Ask does.
    template <class... Parts>
    void Do(const Parts&... parts)
    {
        Make(true, parts...);
    }

    /// For destructors: never fails. Without memory, nothing is recorded.
    void Delete(std::string_view object) noexcept
    {
        try {
            if (recordsQuestions) {
                record.push_back(Text("delete ", object));
            }
        } catch (const std::bad_alloc&) {
        }
    }

    std::vector<std::string> record;
    bool recordsQuestions = false; ///< Else the record holds log messages and what Do is called for.
    int callToFail = 0;            ///< Counted from 1; 0: none.
    int count = 0;                 ///< The calls so far.

private:
    template <class... Parts>
    void Make(bool isRecorded, const Parts&... parts)
    {
        const bool fails = ++count == callToFail;
        if (isRecorded) {
            record.push_back(Text(parts...));
        }
        if (fails) {
            throw std::runtime_error(Text(parts...));
        }
    }

    template <class... Parts>
    static std::string Text(const Parts&... parts)
    {
        std::string text;
        (Append(text, parts), ...);
        return text;
    }
    static void Append(std::string& text, std::string_view part) { text += part; }
    static void Append(std::string& text, const char* part) { text += part != nullptr ? part : "null"; }
    static void Append(std::string& text, unsigned part) { text += std::to_string(part); }
    static void Append(std::string& text, const PermissionBase& part)
    {
        text += Text(part.name(), ":", part.value(), ":", part.resource(), part.IsConditional() ? ":conditional" : "");
    }
};

/// Throws std::logic_error when the module uses an interface in a way that it must not.
inline void Require(bool isRight, const char* wrong)
{
    if (!isRight) {
        throw std::logic_error(wrong);
    }
}

} // namespace secm::testing
