// Stands in for the device's liborvolog: writes lines to standard error. Both gates are closed unless environment
// variables open them: ORVO_ENABLE_LOGS holds the mask, ORVO_ENABLE_SYSTEM_LOG the switch of the Android copy.
#include <orvolog/orvolog.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

/// The number in an environment variable, in C notation (0x40000 or 262144). 0 if the variable is not set. Prints a
/// line to standard error and returns 0 if it does not hold a number from 0 to `maximum`.
uint64_t NumberFromEnvironment(const char* name, uint64_t maximum) {
  const char* text = std::getenv(name);
  if (text == nullptr || *text == '\0') return 0;
  char* end = nullptr;
  errno = 0;
  const uint64_t value = std::strtoull(text, &end, 0);
  if (errno != 0 || *end != '\0' || *text == '-' || value > maximum) {
    std::fprintf(stderr, "%s: \"%s\" is not a number from 0 to %llu; using 0\n", name, text,
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
  // One lock for the whole line keeps lines of several threads apart.
  flockfile(stderr);
  std::fprintf(stderr, "%s %s%s %s:%d %s() ", shortLevel, level, group, file, line, function);
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  std::fputc('\n', stderr);
  funlockfile(stderr);
}
