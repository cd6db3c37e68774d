// Writes the library's performance lines to the host framework's log and the Android log, and computes the durations in
// them.
#ifndef ITOF_PERFORMANCELOG_H_
#define ITOF_PERFORMANCELOG_H_

#include <android/log.h>
#include <orvolog/orvolog.h>
#include <zerun/osutils.h>

#include <cstdint>
#include <cstring>

namespace itof {

/// Whether the framework wants this library's lines: bit 18 of its mask.
inline bool PerformanceLogEnabled() { return (g_enableOrvxLogs & (uint64_t{1} << 18)) != 0; }

/// Whether lines are copied to the Android log: for the value 1 only.
inline bool AndroidCopyEnabled() { return g_enableSystemLog == 1; }

/// The function that every line names.
inline constexpr char kLogFunction[] = "itof_execute_algo";

/// The part of `path` after its last '/', or all of it.
inline const char* BaseName(const char* path) {
  const char* slash = std::strrchr(path, '/');
  return slash == nullptr ? path : slash + 1;
}

/// A stamp in whole milliseconds, rounded down.
inline uint64_t Milliseconds(const ZerunTime& stamp) { return stamp.seconds * 1000 + stamp.nanoseconds / 1'000'000; }

/// Milliseconds from `start` to `end`, modulo 2^32, in the signed type that "%d" prints. Correct across a wrap of the
/// 32-bit count, which happens every 49.7 days.
inline int32_t MillisecondsBetween(const ZerunTime& start, const ZerunTime& end) {
  return static_cast<int32_t>(static_cast<uint32_t>(Milliseconds(end)) - static_cast<uint32_t>(Milliseconds(start)));
}

/// The present time; zero if the platform leaves the stamp unwritten.
inline ZerunTime TimeStamp() {
  ZerunTime stamp{};
  Zerun::OsUtils::GetTime(&stamp);
  return stamp;
}

}  // namespace itof

/// Writes a performance line if the framework's gates allow it. The line names the source file of the statement. The
/// function's name and `line` are part of the text that log readers search for; they stay the same wherever the
/// statement moves. This is a macro because the Android format is joined from string literals, and because __FILE__
/// must be the caller's.
#define ITOF_PERFORMANCE_LOG(line, format, ...)                                                                   \
  do {                                                                                                            \
    if (itof::PerformanceLogEnabled()) {                                                                          \
      if (itof::AndroidCopyEnabled()) {                                                                           \
        __android_log_print(ANDROID_LOG_ERROR, "OrvoX", "[ERROR]%s %s:%d %s() " format "\n", "[UNKNOWN]",         \
                            itof::BaseName(__FILE__), line, itof::kLogFunction, __VA_ARGS__);                     \
      }                                                                                                           \
      OrvoLog::LogSystem("[ERROR]", "E", "[UNKNOWN]", itof::BaseName(__FILE__), itof::kLogFunction, line, format, \
                         __VA_ARGS__);                                                                            \
    }                                                                                                             \
  } while (false)

#endif  // ITOF_PERFORMANCELOG_H_
