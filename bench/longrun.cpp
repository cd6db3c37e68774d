// Frame after frame, as in a camera that is never switched off, through the finished library: memory and open files must
// not grow, and the same frame must give the same words.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "itofinterface.h"
#include "residentmemory.h"
#include "simulatedcalibration.h"
#include "support/silence.h"

namespace {

namespace fs = std::filesystem;
constexpr long kFramesPerRun = 50;
constexpr long kFramesPerInit = 1000;

/// The most that was held at any time that was looked at.
struct Holdings {
  double residentKiB = 0;
  long openFiles = 0;

  void Look() {
    residentKiB = std::max(residentKiB, itofbench::ResidentKiB());
    openFiles = std::max(openFiles, std::distance(fs::directory_iterator("/proc/self/fd"), {}));
  }
};

/// Whether nothing has grown after frame `settled`.
bool Run(long frames, long settled) {
  std::vector<uint16_t> input(size_t{ITOF_FRAME_WIDTH} * ITOF_FRAME_HEIGHT);
  for (size_t i = 0; i < input.size(); ++i) input[i] = static_cast<uint16_t>(i * 40503 >> 7);
  std::vector<uint16_t> frame, expected;
  const itofbench::SimulatedCalibration calibration;
  Holdings before, after;
  {
    const itoftool::Silence silence(stdout);
    for (long i = 0; i < frames; ++i) {
      if (i % kFramesPerInit == 0 && itof_init() != ITOF_OK) throw std::runtime_error("itof_init fails");
      if (i % kFramesPerRun == 0) itof_deinit();
      frame = input;
      itof_execute_algo(frame.data(), 1);
      if (i == 0) expected = frame;
      if (frame != expected) throw std::runtime_error("frame " + std::to_string(i) + " differs from the first");
      if (i % kFramesPerRun == 1) (i < settled ? before : after).Look();
    }
  }
  std::printf(
      "%ld equal frames; at most %.0f KiB resident and %ld open files up to frame %ld, %.0f KiB and %ld after it\n",
      frames, before.residentKiB, before.openFiles, settled, after.residentKiB, after.openFiles);
  return after.openFiles <= before.openFiles && after.residentKiB <= before.residentKiB + 64;
}

}  // namespace

int main(int argc, char** argv) {
  char* end = nullptr;
  const long frames = argc == 2 ? std::strtol(argv[1], &end, 10) : 0;
  if (end == nullptr || *end != '\0' || frames < 4 * kFramesPerRun) {
    std::fprintf(stderr, "usage: %s FRAMES, at least %ld\n", argv[0], 4 * kFramesPerRun);
    return 2;
  }
  try {
    // An allocator keeps some of what comes back; by then it has seen every call often enough.
    if (Run(frames, std::min(frames / 2, 10 * kFramesPerInit))) return 0;
    std::fprintf(stderr, "%s: memory or open files have grown\n", argv[0]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
  }
  return 1;
}
