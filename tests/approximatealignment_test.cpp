// Scenes of a few pixels whose answers are worked out by hand.
#include "alignment/approximatealignment.h"
#include "alignment/grid.h"

#include <fnmatch.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <limits>
#include <string>
#include <vector>

namespace itof {
namespace {

constexpr uint16_t kKept = 0xABCD;  // content of the working buffer before; no working word looks so
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

struct Pixel {
  int code, confidence;
  float farX, farY;
};
struct Position {
  float x, y;
};
struct Scene {
  const char* name;
  int32_t tofWidth, auxWidth, auxHeight;
  std::vector<Pixel> pixels;
  std::vector<Position> table;     // distortion maps; empty: distortion is off
  std::vector<uint16_t> expected;  // the working buffer
  double fx = 1.0, tx = 0.0, fy = 1.0, ty = 0.0;
};

/// Checks the working buffer, and what holds for every scene: the result, the line on standard output, a confidence for
/// each pixel, wherever that went. All that the step has no use for is not a number.
void ExpectAligned(const Scene& scene) {
  SCOPED_TRACE(scene.name);
  AlignmentContext context{};
  AlignmentParams& params = context.params;
  params.tofWidth = scene.tofWidth;
  params.tofHeight = static_cast<int32_t>(scene.pixels.size()) / scene.tofWidth;
  params.auxWidth = scene.auxWidth;
  params.auxHeight = scene.auxHeight;
  std::ranges::fill(context.auxRatioIntrinsics, std::nan(""));
  context.auxRatioIntrinsics[0] = scene.fx;
  context.auxRatioIntrinsics[4] = scene.fy;
  params.translation[0] = scene.tx;
  params.translation[1] = scene.ty;
  params.translation[2] = std::nan("");
  context.distortionEnabled = !scene.table.empty();
  context.confidence = std::make_unique<uint8_t[]>(scene.pixels.size());
  std::vector<uint16_t> frame;
  std::vector<float> farX, farY, tableX, tableY;
  for (const Pixel& pixel : scene.pixels) {
    frame.push_back(static_cast<uint16_t>(pixel.code | pixel.confidence << 13));
    farX.push_back(pixel.farX);
    farY.push_back(pixel.farY);
  }
  for (const Position& position : scene.table) {
    tableX.push_back(position.x);
    tableY.push_back(position.y);
  }
  std::vector<uint16_t> working(PixelCount(scene.auxWidth, scene.auxHeight), kKept);
  testing::internal::CaptureStdout();
  const std::clock_t start = std::clock();
  EXPECT_EQ(RunApproximateAlignment(context, frame.data(), working.data(), farX.data(), farY.data(), tableX.data(),
                                    tableY.data()),
            1);
  const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  const std::string line = testing::internal::GetCapturedStdout();
  EXPECT_EQ(fnmatch("cost time(distort) : ?.?????? (s)\n", line.c_str(), 0), 0) << line;
  EXPECT_LE(std::stod(line.substr(line.find(':') + 1)), seconds + 1e-6) << "the part takes no longer than the whole";
  for (size_t i = 0; i < frame.size(); ++i) EXPECT_EQ(context.confidence[i], scene.pixels[i].confidence) << i;
  EXPECT_EQ(working, scene.expected);
}

TEST(ApproximateAlignment, ScenesByHand) {
  // clang-format off
  const Scene scenes[] = {
      {"a word loses bit 12 and the low four bits", 3, 3, 1,
       {{0x1FFF, 7, 0, 0}, {0x100F, 0, 1, 0}, {0x1010, 1, 2, 0}}, {}, {0xEFF0, 0x0000, 0x2010}},
      {"the last pixel wins, nearer or not", 4, 3, 1,
       {{0x200, 1, 1, 0}, {0x010, 2, 1, 0}, {0x010, 3, 2, 0}, {0x200, 4, 2, 0}}, {}, {kKept, 0x4010, 0x8200}},
      {"no depth: with the pixel before, across the row's end", 2, 2, 2,
       {{0, 1, 1, 1}, {0x120, 2, 1, 0}, {0, 3, 0, 1}, {0, 4, 0, 1}}, {}, {0x2000, 0x8000, kKept, kKept}},
      {"no depth first: where the table has (0, 0)", 2, 2, 1,
       {{0, 3, 0, 0}, {0, 5, 0, 0}}, {{1, 0}, {0, 0}}, {kKept, 0xA000}},
      {"a dropped pixel takes those without depth along", 3, 3, 1,
       {{0x120, 1, 1, 0}, {0x340, 2, 3, 0}, {0, 3, 0, 0}}, {}, {kKept, 0x2120, kKept}},
      {"outside the ToF grid: not looked up, still landing in a larger aux frame", 3, 4, 2,
       {{0x110, 1, 3, 0}, {0x220, 2, 1, 1}, {0x330, 3, 3, 1}}, {{0, 0}, {0, 0}, {0, 0}},
       {kKept, kKept, kKept, 0x2110, kKept, 0x4220, kKept, 0x6330}},
      {"outside a smaller aux frame only: looked up", 3, 2, 1,
       {{0x110, 1, 1, 0}, {0x220, 2, 2, 0}, {0, 0, 2, 0}}, {{0, 0}, {7, 0}, {1, 0}}, {kKept, 0x0000}},
      {"ideal positions are rounded, halves up, and cut toward zero below 0", 3, 4, 1,
       {{0x110, 1, -1.2F, 0}, {0x220, 2, 2.5F, 0}, {0x330, 3, -1.5F, 0}, {0x440, 4, 3.5F, 0}, {0, 5, 0, -2}, {0x550, 6, 0.49F, 0}},
       {}, {0xC550, kKept, kKept, 0x4220}},
      {"table entries are cut; the width itself is outside", 3, 3, 1,
       {{0x110, 1, 0, 0}, {0x220, 2, 1, 0}, {0x330, 3, 2, 0}}, {{1.9F, 0}, {3.0F, 0}, {-0.7F, 0}}, {0x6330, 0x2110, kKept}},
      {"not a number is 0; what leaves 32 bits is outside", 2, 2, 1,
       {{0x110, 1, kNan, kNan}, {0x220, 2, 4294967296.0F, 0}, {0x330, 3, -4294967296.0F, 0}, {0x440, 4, -INFINITY, 0}},
       {}, {0x2110, kKept}},
      // 2 * 5 / 5 to the right, 3 * 5 / 5 up; half of both at twice the depth.
      {"parallax: focal length times translation over a tenth of the code", 2, 3, 4,
       {{50, 1, 0, 3}, {100, 2, 0, 3.5F}}, {},
       {kKept, kKept, 0x2030, kKept, kKept, kKept, kKept, 0x4060, kKept, kKept, kKept, kKept}, 2.0, 5.0, 3.0, -5.0},
      // 15 * 0.7 is 10.5, a seventh of it 1.5, which rounds to 2; 0.7 / 7 first would stay below.
      {"parallax: the product first", 1, 3, 1, {{70, 1, 0, 0}}, {}, {kKept, kKept, 0x2040}, 15.0, 0.7},
      // 27 * 0.7 is 18.9, over 12.6 is 1.5; with 126 * 0.1 or with 1 / 12.6 it would stay below.
      {"parallax: true divisions", 1, 3, 1, {{126, 1, 0, 0}}, {}, {kKept, kKept, 0x2070}, 27.0, 0.7},
  };
  // clang-format on
  for (const Scene& scene : scenes) ExpectAligned(scene);

  // A frame too wide for float arithmetic: the parallax of 2^20 - 4 pixels is exact, and so is the cell.
  Scene wide{"a very wide aux frame", 1, (1 << 20) + 1, 1, {{20, 1, 3, 0}}, {}, {}, 2.0, (1 << 20) - 4.0};
  wide.expected.assign(size_t{1} << 20 | 1, kKept);
  wide.expected[(1 << 20) - 1] = 0x2010;
  ExpectAligned(wide);
}

TEST(ApproximateAlignment, PreparedTargetsAreThoseOfTheOwnMaps) {
  AlignmentParams params{};
  params.tofWidth = params.auxWidth = params.tofCalibWidth = params.auxCalibWidth = 2;
  params.tofHeight = params.auxHeight = params.tofCalibHeight = params.auxCalibHeight = 1;
  AlignmentContext context{};
  InitAlignmentContext(context, params, 1);
  context.farPlaneMapX[1] = 1;
  const uint16_t frame[] = {0x0110, 0x0220};
  const float zero[] = {0, 0}, swapped[] = {1, 0};
  const auto aligned = [&](const float* mapX, const float* mapY) {
    std::vector<uint16_t> working(2, kKept);
    testing::internal::CaptureStdout();
    RunApproximateAlignment(context, frame, working.data(), context.farPlaneMapX.get(), context.farPlaneMapY.get(),
                            mapX, mapY);
    (void)testing::internal::GetCapturedStdout();
    return working;
  };
  const std::vector<uint16_t> straight{0x0110, 0x0220}, crossed{0x0220, 0x0110};
  context.distortMapX[1] = 1;
  PrepareTargets(context);
  for (int round = 0; round < 2; ++round) {  // other maps in between do not stay behind
    EXPECT_EQ(aligned(context.distortMapX.get(), context.distortMapY.get()), straight);
    EXPECT_EQ(aligned(swapped, zero), crossed);
    EXPECT_EQ(aligned(context.distortMapX.get(), swapped), (std::vector<uint16_t>{kKept, 0x0220}));
  }
  std::ranges::copy(swapped, context.distortMapX.get());
  EXPECT_EQ(aligned(context.distortMapX.get(), context.distortMapY.get()), crossed) << "made anew";
  PrepareTargets(context);
  EXPECT_EQ(aligned(context.distortMapX.get(), context.distortMapY.get()), crossed);
}

}  // namespace
}  // namespace itof
