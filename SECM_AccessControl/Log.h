// The one way in which the module writes a message.
#pragma once

#include "platform/logging/Tmr_LogFile.h"

/// Where messages say that they come from: part of what they promise, so not the compiler's own names.
struct LogOrigin {
    const char* sourceFile;
    const char* function;
};

inline constexpr const char* managerSourceFile = "SECM_AccessControl/SECM_AccessControlManager";

/// This module's number in the log, and the number of its log.
inline constexpr int logModule = 197;
inline constexpr int logNumber = 1;

enum LogLevel : int { failureLevel = 3, userLevel = 6, traceLevel = 7 };

/// Writes a printf-style message when `level` is wanted; the arguments are evaluated only then.
#define SECM_LOG(origin, level, ...)                                                                                   \
    do {                                                                                                               \
        if (TmrGLog.StoreParams((origin).sourceFile, (origin).function, __LINE__, (level), logModule, logNumber) !=    \
            0) {                                                                                                       \
            TmrGLog.Log(__VA_ARGS__);                                                                                  \
        }                                                                                                              \
    } while (false)
