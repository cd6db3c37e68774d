// Stands in for the device's liblog: writes lines to standard error in the format of `logcat -v threadtime`.
#include <android/log.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <string>

namespace {

char PriorityLetter(int priority) {
  constexpr char kLetters[] = "??VDIWEF";
  return priority >= 0 && priority < 8 ? kLetters[priority] : '?';
}

__attribute__((format(printf, 1, 0))) std::string Format(const char* format, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  if (length < 0) return {};
  std::string text(static_cast<size_t>(length), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  return text;
}

}  // namespace

extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string message = Format(format, arguments);
  va_end(arguments);
  // The system log separates lines itself, so drop the message's own line end.
  while (!message.empty() && message.back() == '\n') message.pop_back();

  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local{};
  localtime_r(&now.tv_sec, &local);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%m-%d %H:%M:%S", &local);
  const int pid = static_cast<int>(getpid());
  return std::fprintf(stderr, "%s.%03ld %5d %5d %c %s: %s\n", stamp, now.tv_nsec / 1'000'000, pid,
                      static_cast<int>(gettid()), PriorityLetter(priority), tag, message.c_str());
}
