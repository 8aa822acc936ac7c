// All messages of the module are written through SECM_LOG.
#pragma once

#include "platform/logging/Tmr_LogFile.h"

namespace secm {

/// The source file and the function that a message names. They are part of the log's format, so they are literals
/// and do not follow file names and function names of the code.
struct LogOrigin {
    const char* sourceFile;
    const char* function;
};

inline constexpr const char* managerSourceFile = "SECM_AccessControl/SECM_AccessControlManager";

/// The last two arguments of StoreParams, the same for every message: the number of this module, and 1.
inline constexpr int logModule = 197;
inline constexpr int logNumber = 1;

enum LogLevel : int { failureLevel = 3, userLevel = 6, traceLevel = 7 };

} // namespace secm

/// Writes a printf-style message if the log accepts `level`, which is the name of a secm::LogLevel. Evaluates the
/// arguments only in this case.
#define SECM_LOG(origin, level, ...)                                                                                   \
    do {                                                                                                               \
        if (TmrGLog.StoreParams((origin).sourceFile, (origin).function, __LINE__, secm::level, secm::logModule,        \
                                secm::logNumber) != 0) {                                                               \
            TmrGLog.Log(__VA_ARGS__);                                                                                  \
        }                                                                                                              \
    } while (false)
