// Fuzz target for the calibration file. A file that the library accepts gives frames that can be repeated; one that it
// refuses changes nothing.
#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "fuzz/require.h"
#include "itofinterface.h"
#include "support/recordingplatform.h"

namespace {

using Frame = std::vector<uint16_t>;

Frame SomeFrame() {
  std::mt19937 random(1);
  Frame frame(size_t{ITOF_FRAME_WIDTH} * ITOF_FRAME_HEIGHT);
  // Codes of all sizes; a quarter of the pixels have no depth.
  for (uint16_t& word : frame)
    word = static_cast<uint16_t>((random() & 0xFFFF) >> random() % 14 & -(random() % 4 != 0));
  return frame;
}

Frame Aligned(Frame frame) {
  Require(itof_execute_algo(frame.data(), 1.25F) == 0, "a frame's result is 0");
  return frame;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const Frame frame = SomeFrame();
  static Frame present = frame;  // `frame` aligned with the present calibration; unchanged before the first
  g_platform = {.file = std::string(data, data + size)};
  const int32_t result = itof_init();
  Require(g_platform.openStreams == 0, "the file is closed");
  if (size < 228) Require(result == ITOF_CALIBRATION_SHORT, "a short file gives the result for short files");
  if (size >= 228)
    Require(result == ITOF_OK || result == ITOF_CALIBRATION_UNUSABLE, "any other file is accepted or unusable");
  if (result != ITOF_OK) {
    Require(Aligned(frame) == present, "a refused file changes nothing");
    return 0;
  }

  const Frame first = present = Aligned(frame);
  Require(std::ranges::all_of(first, [](uint16_t word) { return word < 0x0800; }), "aligned words have 11 bits");
  Require(Aligned(frame) == first, "the second frame of a run gives the same words");
  itof_deinit();
  Require(Aligned(frame) == first, "the next run gives the same words");
  return 0;
}
