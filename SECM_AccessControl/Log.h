// The one way in which the module writes a message.
#pragma once

#include "platform/logging/Tmr_LogFile.h"

/// Where messages say that they come from: part of what they promise, so not the compiler's own names.
struct LogOrigin {
    const char* sourceFile;
    const char* function;
};

inline constexpr const char* managerSourceFile = "SECM_AccessControl/SECM_AccessControlManager";

enum LogLevel : int { failureLevel = 3, userLevel = 6, traceLevel = 7 };

/// Writes a printf-style message when `level` is wanted; the arguments are evaluated only then.
#define SECM_LOG(origin, level, ...)                                                                                   \
    do {                                                                                                               \
        if (TmrGLog.StoreParams((origin).sourceFile, (origin).function, __LINE__, (level), 197, 1) != 0) {             \
            TmrGLog.Log(__VA_ARGS__);                                                                                  \
        }                                                                                                              \
    } while (false)
