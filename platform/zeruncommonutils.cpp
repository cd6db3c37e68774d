// Stands in for the device's libzeruncommonutils: a monotonic clock, and files of the C library. A host program can
// serve the bytes of a file, or put device paths under another root.
#include <zerun/hostfiles.h>
#include <zerun/osutils.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

struct Served {
  std::string devicePath;
  std::string bytes;
};

/// The file served from memory; without one, its path is empty.
Served& TheServedFile() {
  static Served served;
  return served;
}

}  // namespace

ZerunHost::ServedFile::ServedFile(const std::string& devicePath, const std::string& bytes) {
  TheServedFile() = {devicePath, bytes};
}

ZerunHost::ServedFile::~ServedFile() { TheServedFile() = {}; }

void Zerun::OsUtils::GetTime(ZerunTime* time) {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  *time = {static_cast<uint64_t>(now.tv_sec), static_cast<uint64_t>(now.tv_nsec)};
}

FILE* Zerun::OsUtils::FOpen(const char* path, const char* mode) {
  Served& served = TheServedFile();
  if (path == served.devicePath) return fmemopen(served.bytes.data(), served.bytes.size(), "rb");
  const char* root = std::getenv("ZERUN_HOST_ROOT");
  if (root == nullptr || *path != '/') return std::fopen(path, mode);
  return std::fopen((std::string(root) + path).c_str(), mode);
}

size_t Zerun::OsUtils::FRead(void* destination, size_t destinationSize, size_t itemSize, size_t itemCount, FILE* file) {
  if (itemSize == 0) return 0;
  return std::fread(destination, itemSize, std::min(itemCount, destinationSize / itemSize), file);
}

int Zerun::OsUtils::FClose(FILE* file) { return std::fclose(file); }
