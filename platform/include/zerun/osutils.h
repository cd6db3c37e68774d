// Declares the clock and the file functions of the host camera framework like the device's libzeruncommonutils.
#ifndef ITOF_PLATFORM_ZERUN_OSUTILS_H_
#define ITOF_PLATFORM_ZERUN_OSUTILS_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>

/// Time since an unspecified start: whole seconds, and nanoseconds below one second.
struct ZerunTime {
  uint64_t seconds;
  uint64_t nanoseconds;
};

namespace Zerun {

class OsUtils {
 public:
  /// Stores the time of a monotonic clock in `*time`.
  static void GetTime(ZerunTime* time);

  /// Opens a file as a stream of the C library; `mode` is that of fopen. Returns null on failure, with errno set.
  static FILE* FOpen(const char* path, const char* mode);

  /// Reads up to `itemCount` items of `itemSize` bytes into `destination`, never beyond `destinationSize` bytes.
  /// Returns the number of whole items read.
  static size_t FRead(void* destination, size_t destinationSize, size_t itemSize, size_t itemCount, FILE* file);

  /// Closes a file opened by FOpen. Returns 0 on success.
  static int FClose(FILE* file);
};

}  // namespace Zerun

#endif  // ITOF_PLATFORM_ZERUN_OSUTILS_H_
