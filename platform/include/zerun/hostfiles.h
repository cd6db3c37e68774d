// Lets a host program give the library a file from memory. Part of the host's stand-in for libzeruncommonutils; devices do
// not have it, and nothing under system/ includes it.
#ifndef ITOF_PLATFORM_ZERUN_HOSTFILES_H_
#define ITOF_PLATFORM_ZERUN_HOSTFILES_H_

#include <string>

namespace ZerunHost {

/// While it lives, `Zerun::OsUtils::FOpen(devicePath, ...)` opens a stream that reads `bytes`, whatever files there are.
/// Other paths are opened as usual: an absolute path under the folder of the environment variable ZERUN_HOST_ROOT if that
/// is set. One object at a time; close its streams before it dies. Not safe while another thread opens a file.
class ServedFile {
 public:
  ServedFile(const std::string& devicePath, const std::string& bytes);
  ~ServedFile();
  ServedFile(const ServedFile&) = delete;
  ServedFile& operator=(const ServedFile&) = delete;
};

}  // namespace ZerunHost

#endif  // ITOF_PLATFORM_ZERUN_HOSTFILES_H_
