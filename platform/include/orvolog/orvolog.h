// The host camera framework's logger and its two gates, as the device's liborvolog has them.
#ifndef ITOF_PLATFORM_ORVOLOG_ORVOLOG_H_
#define ITOF_PLATFORM_ORVOLOG_ORVOLOG_H_

#include <cstdint>

/// Log-enable mask of the framework; each bit opens the lines of one component. Owned by the framework.
extern uint64_t g_enableOrvxLogs;

/// 1: lines are copied to the Android log as well; any other value: they are not. Owned by the framework.
extern int g_enableSystemLog;

namespace OrvoLog {

/// Writes one line to the framework's log. `format` and what follows are as for printf.
void LogSystem(const char* level, const char* shortLevel, const char* group, const char* file, const char* function,
               int line, const char* format, ...) __attribute__((format(printf, 7, 8)));

}  // namespace OrvoLog

#endif  // ITOF_PLATFORM_ORVOLOG_ORVOLOG_H_
