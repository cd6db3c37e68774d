// Stand-in for the device's libzeruncommonutils: a monotonic clock, and files of the C library whose device paths a
// host can send elsewhere.
#include <zerun/hostfiles.h>
#include <zerun/osutils.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

struct Redirection {
  std::string devicePath;
  std::string hostPath;
};

Redirection& TheRedirection() {
  static Redirection redirection;
  return redirection;
}

std::string HostPath(const std::string& devicePath) {
  const Redirection& redirection = TheRedirection();
  if (!redirection.hostPath.empty() && devicePath == redirection.devicePath) return redirection.hostPath;
  const char* root = std::getenv("ZERUN_HOST_ROOT");
  if (root != nullptr && devicePath.starts_with('/')) return root + devicePath;
  return devicePath;
}

}  // namespace

void ZerunHost::RedirectPath(const std::string& devicePath, const std::string& hostPath) {
  TheRedirection() = {devicePath, hostPath};
}

void Zerun::OsUtils::GetTime(ZerunTime* time) {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  *time = {static_cast<uint64_t>(now.tv_sec), static_cast<uint64_t>(now.tv_nsec)};
}

FILE* Zerun::OsUtils::FOpen(const char* path, const char* mode) { return std::fopen(HostPath(path).c_str(), mode); }

size_t Zerun::OsUtils::FRead(void* destination, size_t destinationSize, size_t itemSize, size_t itemCount, FILE* file) {
  if (itemSize == 0) return 0;
  return std::fread(destination, itemSize, std::min(itemCount, destinationSize / itemSize), file);
}

int Zerun::OsUtils::FClose(FILE* file) { return std::fclose(file); }
