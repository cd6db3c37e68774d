// The library's only diagnostics: performance lines through the host framework's logger and the Android log, and the
// arithmetic of the durations in them.
#ifndef ITOF_PERFORMANCELOG_H_
#define ITOF_PERFORMANCELOG_H_

#include <android/log.h>
#include <orvolog/orvolog.h>
#include <zerun/osutils.h>

#include <cstdint>
#include <cstring>

namespace itof {

/// Bit 18 of the framework's mask opens this library's lines.
inline bool PerformanceLogEnabled() { return (g_enableOrvxLogs & (uint64_t{1} << 18)) != 0; }

/// The copy for the Android log is written for the value 1 only.
inline bool AndroidCopyEnabled() { return g_enableSystemLog == 1; }

/// The part of `path` after its last '/', or all of it.
inline const char* BaseName(const char* path) {
  const char* slash = std::strrchr(path, '/');
  return slash == nullptr ? path : slash + 1;
}

/// Whole milliseconds of a stamp.
inline uint64_t Milliseconds(const ZerunTime& stamp) { return stamp.seconds * 1000 + stamp.nanoseconds / 1'000'000; }

/// Milliseconds from `start` to `end`, modulo 2^32 and in the signed type that "%d" prints. Right across a wrap of the
/// 32-bit count, which comes every 49.7 days.
inline int32_t MillisecondsBetween(const ZerunTime& start, const ZerunTime& end) {
  return static_cast<int32_t>(static_cast<uint32_t>(Milliseconds(end)) - static_cast<uint32_t>(Milliseconds(start)));
}

/// The present time; zero where the platform leaves the stamp unwritten.
inline ZerunTime TimeStamp() {
  ZerunTime stamp{};
  Zerun::OsUtils::GetTime(&stamp);
  return stamp;
}

}  // namespace itof

/// Writes a performance line, if the framework's gates let it pass, under the name of the enclosing function and of the
/// source file that the statement stands in. `line` is part of the text that log readers search for, and stays the same
/// wherever the statement moves. A macro, since the Android format is joined from string literals and since __FILE__
/// and __func__ must be the caller's.
#define ITOF_PERFORMANCE_LOG(line, format, ...)                                                                       \
  do {                                                                                                                \
    if (itof::PerformanceLogEnabled()) {                                                                              \
      if (itof::AndroidCopyEnabled()) {                                                                               \
        __android_log_print(ANDROID_LOG_ERROR, "OrvoX", "[ERROR]%s %s:%d %s() " format "\n", "[UNKNOWN]",             \
                            itof::BaseName(__FILE__), line, __func__, __VA_ARGS__);                                   \
      }                                                                                                               \
      OrvoLog::LogSystem("[ERROR]", "E", "[UNKNOWN]", itof::BaseName(__FILE__), __func__, line, format, __VA_ARGS__); \
    }                                                                                                                 \
  } while (false)

#endif  // ITOF_PERFORMANCELOG_H_
