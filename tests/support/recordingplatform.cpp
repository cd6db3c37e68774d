// Implements the device's libraries and the allocator for tests: calls are recorded and fail on demand.
#include "support/recordingplatform.h"

#include <android/log.h>
#include <orvolog/orvolog.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <new>
#include <utility>

RecordingPlatform g_platform;
uint64_t g_enableOrvxLogs = 0;
int g_enableSystemLog = 0;
long g_liveAllocations = 0;
long g_allocationsUntilFailure = -1;

namespace {

/// While it exists, all allocations succeed. The recording's own memory is not under test.
class PlatformMemory {
 public:
  PlatformMemory() : saved_(std::exchange(g_allocationsUntilFailure, -1)) {}
  ~PlatformMemory() { g_allocationsUntilFailure = saved_; }
  PlatformMemory(const PlatformMemory&) = delete;
  PlatformMemory& operator=(const PlatformMemory&) = delete;

 private:
  long saved_;
};

/// A file that returns its bytes in pieces.
struct Stream {
  std::string bytes;
  size_t readFailsAt;
  size_t at = 0;

  static ssize_t Read(void* cookie, char* buffer, size_t size) {
    auto& [bytes, readFailsAt, at] = *static_cast<Stream*>(cookie);
    if (at == readFailsAt) {
      errno = EIO;
      return -1;
    }
    const size_t count = std::min({size, size_t{100}, bytes.size() - at, readFailsAt - at});
    std::copy_n(bytes.data() + at, count, buffer);
    at += count;
    return static_cast<ssize_t>(count);
  }

  static int Close(void* cookie) {
    delete static_cast<Stream*>(cookie);
    return 0;
  }
};

__attribute__((format(printf, 1, 0))) std::string Format(const char* format, va_list arguments) {
  char text[512];
  std::vsnprintf(text, sizeof text, format, arguments);
  return text;
}

}  // namespace

extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...) {
  const PlatformMemory memory;
  va_list arguments;
  va_start(arguments, format);
  g_platform.events.push_back("android: " + std::to_string(priority) + " " + tag + " " + Format(format, arguments));
  va_end(arguments);
  return -1;
}

void OrvoLog::LogSystem(const char* level, const char* shortLevel, const char* group, const char* file,
                        const char* function, int line, const char* format, ...) {
  const PlatformMemory memory;
  va_list arguments;
  va_start(arguments, format);
  std::string event = "orvo:";
  for (const char* part : {level, shortLevel, group, file, function}) event.append(" ").append(part);
  g_platform.events.push_back(event + " " + std::to_string(line) + " " + Format(format, arguments));
  va_end(arguments);
}

void Zerun::OsUtils::GetTime(ZerunTime* time) {
  const PlatformMemory memory;
  g_platform.events.push_back("clock");
  g_platform.atStamp();
  if (g_platform.stamps.empty()) return;
  *time = g_platform.stamps.front();
  if (g_platform.stamps.size() > 1) g_platform.stamps.pop_front();
}

FILE* Zerun::OsUtils::FOpen(const char* path, const char* mode) {
  const PlatformMemory memory;
  g_platform.opened.push_back(std::string(path) + " " + mode);
  if (!g_platform.file) return nullptr;
  constexpr cookie_io_functions_t kFunctions{Stream::Read, nullptr, nullptr, Stream::Close};
  auto* stream = new Stream{*g_platform.file, g_platform.readFailsAt.value_or(std::string::npos)};
  ++g_platform.openStreams;
  return fopencookie(stream, mode, kFunctions);
}

size_t Zerun::OsUtils::FRead(void* destination, size_t destinationSize, size_t itemSize, size_t itemCount, FILE* file) {
  return std::fread(destination, itemSize, std::min(itemCount, destinationSize / itemSize), file);
}

int Zerun::OsUtils::FClose(FILE* file) {
  --g_platform.openStreams;
  return std::fclose(file);
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
  if (g_allocationsUntilFailure == 0) return nullptr;
  if (g_allocationsUntilFailure > 0) --g_allocationsUntilFailure;
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory != nullptr) ++g_liveAllocations;
  return memory;
}

void* operator new(size_t size) {
  void* memory = operator new(size, std::nothrow);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept {
  if (memory != nullptr) --g_liveAllocations;
  std::free(memory);
}

void operator delete(void* memory, size_t) noexcept { operator delete(memory); }

// Sanitizers replace the array forms if the program does not, and theirs do not call the single ones.
void* operator new[](size_t size) { return operator new(size); }
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete[](void* memory, size_t) noexcept { operator delete(memory); }
