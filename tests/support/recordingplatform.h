// Declares a platform that records the library's calls and fails on demand. It replaces the host's stand-ins.
#ifndef ITOF_TESTS_SUPPORT_RECORDINGPLATFORM_H_
#define ITOF_TESTS_SUPPORT_RECORDINGPLATFORM_H_

#include <zerun/osutils.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <vector>

struct RecordingPlatform {
  /// Content of the calibration file; without a value, opening it fails.
  std::optional<std::string> file{};
  /// Reading fails after this number of bytes.
  std::optional<size_t> readFailsAt{};
  std::vector<std::string> opened{};  // "path mode"
  int openStreams = 0;

  /// Stamps that GetTime gives, in order. It repeats the last one.
  std::deque<ZerunTime> stamps{};
  /// Called by GetTime.
  std::function<void()> atStamp = [] {};
  /// All calls in order: "clock" for each stamp, and each line as "android: ..." or "orvo: ...".
  std::vector<std::string> events{};
};

/// The platform of this process. Each test assigns a fresh one.
extern RecordingPlatform g_platform;

/// Number of allocations by operator new that are not freed yet.
extern long g_liveAllocations;
/// Number of allocations that still succeed before all others, except the platform's own, throw std::bad_alloc. Below 0,
/// all succeed.
extern long g_allocationsUntilFailure;

/// Calls `function` with only `count` allocations that succeed (below 0: all). Returns false if it threw std::bad_alloc.
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
