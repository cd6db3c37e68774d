// The platform's functions as the tests want them: observable, and failing where they are told to.
#include "recordingplatform.h"

#include <android/log.h>
#include <orvolog/orvolog.h>

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <new>

RecordingPlatform g_platform;
uint64_t g_enableOrvxLogs = 0;
int g_enableSystemLog = 0;
long g_liveAllocations = 0;
long g_allocationsUntilFailure = -1;

namespace {

__attribute__((format(printf, 1, 0))) std::string Format(const char* format, va_list arguments) {
  char text[512];
  std::vsnprintf(text, sizeof text, format, arguments);
  return text;
}

}  // namespace

extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  g_platform.events.push_back("android: " + std::to_string(priority) + " " + tag + " " + Format(format, arguments));
  va_end(arguments);
  return -1;
}

void OrvoLog::LogSystem(const char* level, const char* shortLevel, const char* group, const char* file,
                        const char* function, int line, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string event = "orvo:";
  for (const char* part : {level, shortLevel, group, file, function}) event.append(" ").append(part);
  g_platform.events.push_back(event + " " + std::to_string(line) + " " + Format(format, arguments));
  va_end(arguments);
}

void Zerun::OsUtils::GetTime(ZerunTime* time) {
  g_platform.events.push_back("clock");
  if (g_platform.stamps.empty()) return;
  *time = g_platform.stamps.front();
  if (g_platform.stamps.size() > 1) g_platform.stamps.pop_front();
}

FILE* Zerun::OsUtils::FOpen(const char* path, const char* mode) {
  g_platform.opened.push_back(std::string(path) + " " + mode);
  if (!g_platform.file) return nullptr;
  // Reading a directory is the one read error that needs no device.
  FILE* stream = g_platform.readFails ? std::fopen("/", "rb") : std::tmpfile();
  if (stream == nullptr) return nullptr;
  if (!g_platform.readFails) {
    std::fwrite(g_platform.file->data(), 1, g_platform.file->size(), stream);
    std::rewind(stream);
  }
  ++g_platform.openStreams;
  return stream;
}

size_t Zerun::OsUtils::FRead(void* destination, size_t destinationSize, size_t itemSize, size_t itemCount, FILE* file) {
  return std::fread(destination, itemSize, std::min(itemCount, destinationSize / itemSize), file);
}

int Zerun::OsUtils::FClose(FILE* file) {
  --g_platform.openStreams;
  return std::fclose(file);
}

void* operator new(size_t size) {
  if (g_allocationsUntilFailure == 0) throw std::bad_alloc();
  if (g_allocationsUntilFailure > 0) --g_allocationsUntilFailure;
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  ++g_liveAllocations;
  return memory;
}

void operator delete(void* memory) noexcept {
  if (memory != nullptr) --g_liveAllocations;
  std::free(memory);
}

void operator delete(void* memory, size_t) noexcept { operator delete(memory); }

// Sanitizers have array forms of their own, which would not come through the single ones.
void* operator new[](size_t size) { return operator new(size); }
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete[](void* memory, size_t) noexcept { operator delete(memory); }
