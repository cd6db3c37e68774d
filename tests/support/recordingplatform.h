// A platform that records what the library asks of it and fails on demand; linked instead of the host's stand-ins.
#ifndef ITOF_TESTS_SUPPORT_RECORDINGPLATFORM_H_
#define ITOF_TESTS_SUPPORT_RECORDINGPLATFORM_H_

#include <zerun/osutils.h>

#include <cstdint>
#include <deque>
#include <new>
#include <optional>
#include <string>
#include <vector>

struct RecordingPlatform {
  /// What the calibration's path holds; nothing: opening it fails.
  std::optional<std::string> file{};
  /// So many bytes can be read, and then reading fails.
  std::optional<size_t> readFailsAt{};
  std::vector<std::string> opened{};  // "path mode"
  int openStreams = 0;

  /// Stamps that GetTime gives, in order; when they run out, it gives the last one again.
  std::deque<ZerunTime> stamps{};
  /// In order: "clock" for each stamp, and each line as "android: ..." or "orvo: ...".
  std::vector<std::string> events{};
};

/// The platform that this process's library sees. Tests assign a fresh one.
extern RecordingPlatform g_platform;

/// Allocations by operator new that are not freed yet.
extern long g_liveAllocations;
/// So many more allocations succeed, and all after them throw std::bad_alloc, but for the platform's own; below 0: none
/// does.
extern long g_allocationsUntilFailure;

/// Calls `function` while all allocations after the next `count` fail (below 0: none does). False: it threw for that.
template <typename Function>
bool Succeeds(long count, const Function& function) {
  g_allocationsUntilFailure = count;
  bool succeeds = true;
  try {
    function();
  } catch (const std::bad_alloc&) {
    if (g_allocationsUntilFailure != 0) throw;
    succeeds = false;
  }
  g_allocationsUntilFailure = -1;
  return succeeds;
}

#endif  // ITOF_TESTS_SUPPORT_RECORDINGPLATFORM_H_
