// Compares real frames with aligned words from an independent program. The data is not part of the project; without it
// the test is skipped.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "calibration/calibrationrecord.h"
#include "itofinterface.h"
#include "support/initlibrary.h"

namespace {

std::vector<uint16_t> ReadWords(const std::string& path) {
  std::vector<uint16_t> words(640 * 360 + 1);  // room for one too many
  std::ifstream file(path, std::ios::binary);
  file.read(reinterpret_cast<char*>(words.data()), static_cast<std::streamsize>(2 * words.size()));
  words.resize(static_cast<size_t>(file.gcount()) / 2);
  return words;
}

TEST(RealData, FirstFramesGiveTheExpectedWords) {
  const std::string folder = ITOF_REALDATA;
  if (folder.empty()) GTEST_SKIP() << "ITOF_REALDATA is not set";
  const struct {
    const char* frame;
    const char* calibration;
    float ratio;
    const char* expected;
  } cases[] = {{"desk_mug.words.raw", "camera_a.bin", 1, "desk_mug.camera_a.ratio1.raw"},
               {"lab_spheres.words.raw", "camera_a.bin", 2, "lab_spheres.camera_a.ratio2.raw"},
               {"orchard_121804.words.raw", "wide_stereo.bin", 1, "orchard_121804.wide_stereo.ratio1.raw"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.expected);
    itof::CalibrationRecord record{};
    std::ifstream calibration(folder + "/calibrations/" + c.calibration, std::ios::binary);
    ASSERT_TRUE(calibration.read(reinterpret_cast<char*>(&record), sizeof record));
    InitLibrary(record);
    std::vector<uint16_t> frame = ReadWords(folder + "/frames/" + c.frame);
    ASSERT_EQ(frame.size(), 640U * 360U);
    itof_execute_algo(frame.data(), c.ratio);
    EXPECT_TRUE(frame == ReadWords(folder + "/expected/" + c.expected));
  }
}

}  // namespace
