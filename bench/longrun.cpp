// Runs a long series of frames through the finished library, as a camera that is never switched off would. Fails if
// memory or open files grow, or if equal frames give different words.
#include <zerun/hostfiles.h>

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

#include "calibration/calibrationrecord.h"
#include "itofinterface.h"
#include "residentmemory.h"
#include "simulation/rig.h"
#include "support/silence.h"

namespace {

namespace fs = std::filesystem;
constexpr long kFramesPerRun = 50;
constexpr long kFramesPerInit = 1000;

/// The highest values of all samples.
struct Peak {
  double residentKiB = 0;
  long openFiles = 0;

  void Sample() {
    residentKiB = std::max(residentKiB, itofbench::ResidentKiB());
    openFiles = std::max(openFiles, std::distance(fs::directory_iterator("/proc/self/fd"), {}));
  }
};

/// Returns whether the peak after frame `settled` is no higher than before, with 64 KiB of tolerance for memory.
bool Run(long frames, long settled) {
  std::vector<uint16_t> input(size_t{ITOF_FRAME_WIDTH} * ITOF_FRAME_HEIGHT);
  for (size_t i = 0; i < input.size(); ++i) input[i] = static_cast<uint16_t>(i * 40503 >> 7);
  std::vector<uint16_t> frame, expected;
  const itof::CalibrationRecord record = itoftool::simulation::GentleRig().record;
  const ZerunHost::ServedFile calibration(itof::kCalibrationPath,
                                          {reinterpret_cast<const char*>(&record), sizeof record});
  Peak before, after;
  {
    const itoftool::Silence silence(stdout);
    for (long i = 0; i < frames; ++i) {
      if (i % kFramesPerInit == 0 && itof_init() != ITOF_OK) throw std::runtime_error("itof_init failed");
      if (i % kFramesPerRun == 0) itof_deinit();
      frame = input;
      itof_execute_algo(frame.data(), 1);
      if (i == 0) expected = frame;
      if (frame != expected) throw std::runtime_error("frame " + std::to_string(i) + " differs from the first");
      if (i % kFramesPerRun == 1) (i < settled ? before : after).Sample();
    }
  }
  std::printf(
      "%ld frames, all with the same result\n"
      "peak up to frame %ld: %.0f KiB resident, %ld open files; after it: %.0f KiB, %ld open files\n",
      frames, settled, before.residentKiB, before.openFiles, after.residentKiB, after.openFiles);
  return after.openFiles <= before.openFiles && after.residentKiB <= before.residentKiB + 64;
}

}  // namespace

int main(int argc, char** argv) {
  char* end = nullptr;
  const long frames = argc == 2 ? std::strtol(argv[1], &end, 10) : 0;
  if (end == nullptr || *end != '\0' || frames < 4 * kFramesPerRun) {
    std::fprintf(stderr, "usage: %s FRAMES (at least %ld)\n", argv[0], 4 * kFramesPerRun);
    return 2;
  }
  try {
    // Resident memory settles only after many calls, because the allocator keeps some of the freed memory.
    if (Run(frames, std::min(frames / 2, 10 * kFramesPerInit))) return 0;
    std::fprintf(stderr, "%s: resident memory or the number of open files has grown\n", argv[0]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
  }
  return 1;
}
