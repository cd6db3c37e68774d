// Lets a host program give the library a file from memory. Belongs to the host's stand-in for libzeruncommonutils.
// Devices do not have it, and nothing under system/ includes it.
#ifndef ITOF_PLATFORM_ZERUN_HOSTFILES_H_
#define ITOF_PLATFORM_ZERUN_HOSTFILES_H_

#include <string>

namespace ZerunHost {

/// While it exists, `Zerun::OsUtils::FOpen(devicePath, ...)` opens a stream that reads a copy of `bytes`, which may not
/// be empty. Other paths are opened as files; if the environment variable ZERUN_HOST_ROOT is set, an absolute path is
/// opened under that folder. Create one object at a time, and close its streams before destroying it. Not safe while
/// another thread opens a file.
class ServedFile {
 public:
  ServedFile(const std::string& devicePath, const std::string& bytes);
  ~ServedFile();
  ServedFile(const ServedFile&) = delete;
  ServedFile& operator=(const ServedFile&) = delete;
};

}  // namespace ZerunHost

#endif  // ITOF_PLATFORM_ZERUN_HOSTFILES_H_
