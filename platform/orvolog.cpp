// Stand-in for the device's liborvolog: lines go to standard error. Both gates are closed unless the environment opens
// them: ORVO_ENABLE_LOGS holds the mask, ORVO_ENABLE_SYSTEM_LOG the switch of the Android copy.
#include <orvolog/orvolog.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

/// The number that an environment variable holds, in C notation (0x40000 and 262144 alike); 0 if it is not set, and
/// also, with a line on standard error, if it is no number up to `maximum`.
uint64_t NumberFromEnvironment(const char* name, uint64_t maximum) {
  const char* text = std::getenv(name);
  if (text == nullptr || *text == '\0') return 0;
  char* end = nullptr;
  errno = 0;
  const uint64_t value = std::strtoull(text, &end, 0);
  if (errno != 0 || *end != '\0' || *text == '-' || value > maximum) {
    std::fprintf(stderr, "%s: \"%s\" is no number from 0 to %llu; 0 is used\n", name, text,
                 static_cast<unsigned long long>(maximum));
    return 0;
  }
  return value;
}

}  // namespace

uint64_t g_enableOrvxLogs = NumberFromEnvironment("ORVO_ENABLE_LOGS", std::numeric_limits<uint64_t>::max());
int g_enableSystemLog =
    static_cast<int>(NumberFromEnvironment("ORVO_ENABLE_SYSTEM_LOG", std::numeric_limits<int>::max()));

void OrvoLog::LogSystem(const char* level, const char* shortLevel, const char* group, const char* file,
                        const char* function, int line, const char* format, ...) {
  // One lock over the line's pieces, so that lines of several threads do not mix.
  flockfile(stderr);
  std::fprintf(stderr, "%s %s%s %s:%d %s() ", shortLevel, level, group, file, line, function);
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  std::fputc('\n', stderr);
  funlockfile(stderr);
}
