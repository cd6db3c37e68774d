// Declares the host camera framework's logger and its two gates like the device's liborvolog.
#ifndef ITOF_PLATFORM_ORVOLOG_ORVOLOG_H_
#define ITOF_PLATFORM_ORVOLOG_ORVOLOG_H_

#include <cstdint>

/// The framework's log mask: each bit enables the lines of one component. Owned by the framework; the library only
/// reads it.
extern uint64_t g_enableOrvxLogs;

/// Lines are also copied to the Android log if this is 1. Owned by the framework; the library only reads it.
extern int g_enableSystemLog;

namespace OrvoLog {

/// Writes one line to the framework's log. `format` and the arguments after it are those of printf.
void LogSystem(const char* level, const char* shortLevel, const char* group, const char* file, const char* function,
               int line, const char* format, ...) __attribute__((format(printf, 7, 8)));

}  // namespace OrvoLog

#endif  // ITOF_PLATFORM_ORVOLOG_ORVOLOG_H_
