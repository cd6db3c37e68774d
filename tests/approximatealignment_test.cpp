// Aligns scenes of a few pixels whose results are worked out by hand.
#include "alignment/approximatealignment.h"

#include <fnmatch.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <ctime>
#include <limits>
#include <string>
#include <vector>

#include "alignment/distortlut.h"
#include "alignment/farplane.h"
#include "alignment/grid.h"
#include "plain/plainsteps.h"
#include "support/calibrationbytes.h"

namespace itof {
namespace {

constexpr uint16_t kKept = 0xABCD;  // initial content of the working buffer; not a working word
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
  std::vector<Position> table;     // lens table; if empty, distortion is off
  std::vector<uint16_t> expected;  // working buffer
  double fx = 1.0, tx = 0.0, fy = 1.0, ty = 0.0;
};

/// Checks the working buffer, the result, the line on standard output and all confidences. Numbers that the step must not
/// use are not-a-number.
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
  EXPECT_LE(std::stod(line.substr(line.find(':') + 1)), seconds + 1e-6) << "longer than the whole call";
  for (size_t i = 0; i < frame.size(); ++i) EXPECT_EQ(context.confidence[i], scene.pixels[i].confidence) << i;
  EXPECT_EQ(working, scene.expected);
}

TEST(ApproximateAlignment, ScenesByHand) {
  // clang-format off
  const Scene scenes[] = {
      {"a word loses bit 12 and the low four bits", 3, 3, 1,
       {{0x1FFF, 7, 0, 0}, {0x100F, 0, 1, 0}, {0x1010, 1, 2, 0}}, {}, {0xEFF0, 0x0000, 0x2010}},
      {"the last pixel wins, nearer or farther", 4, 3, 1,
       {{0x200, 1, 1, 0}, {0x010, 2, 1, 0}, {0x010, 3, 2, 0}, {0x200, 4, 2, 0}}, {}, {kKept, 0x4010, 0x8200}},
      {"no depth: to the cell of the pixel before, across the end of a row", 2, 2, 2,
       {{0, 1, 1, 1}, {0x120, 2, 1, 0}, {0, 3, 0, 1}, {0, 4, 0, 1}}, {}, {0x2000, 0x8000, kKept, kKept}},
      {"no depth at the start: to the table's entry of (0, 0)", 2, 2, 1,
       {{0, 3, 0, 0}, {0, 5, 0, 0}}, {{1, 0}, {0, 0}}, {kKept, 0xA000}},
      {"no depth after a dropped pixel: dropped too", 3, 3, 1,
       {{0x120, 1, 1, 0}, {0x340, 2, 3, 0}, {0, 3, 0, 0}}, {}, {kKept, 0x2120, kKept}},
      {"outside the ToF grid: not looked up, lands in a larger aux frame", 3, 4, 2,
       {{0x110, 1, 3, 0}, {0x220, 2, 1, 1}, {0x330, 3, 3, 1}}, {{0, 0}, {0, 0}, {0, 0}},
       {kKept, kKept, kKept, 0x2110, kKept, 0x4220, kKept, 0x6330}},
      {"outside a smaller aux frame, inside the ToF grid: looked up", 3, 2, 1,
       {{0x110, 1, 1, 0}, {0x220, 2, 2, 0}, {0, 0, 2, 0}}, {{0, 0}, {7, 0}, {1, 0}}, {kKept, 0x0000}},
      {"ideal positions are rounded half up, and toward zero below 0", 3, 4, 1,
       {{0x110, 1, -1.2F, 0}, {0x220, 2, 2.5F, 0}, {0x330, 3, -1.5F, 0}, {0x440, 4, 3.5F, 0}, {0, 5, 0, -2}, {0x550, 6, 0.49F, 0}},
       {}, {0xC550, kKept, kKept, 0x4220}},
      {"table entries are cut, and the width is outside", 3, 3, 1,
       {{0x110, 1, 0, 0}, {0x220, 2, 1, 0}, {0x330, 3, 2, 0}}, {{1.9F, 0}, {3.0F, 0}, {-0.7F, 0}}, {0x6330, 0x2110, kKept}},
      {"not-a-number is 0, and positions beyond 32 bits are outside", 2, 2, 1,
       {{0x110, 1, kNan, kNan}, {0x220, 2, 4294967296.0F, 0}, {0x330, 3, -4294967296.0F, 0}, {0x440, 4, -INFINITY, 0}},
       {}, {0x2110, kKept}},
      // 2 * 5 / 5 to the right and 3 * 5 / 5 up; half of that at twice the depth.
      {"parallax: focal length times translation over a tenth of the code", 2, 3, 4,
       {{50, 1, 0, 3}, {100, 2, 0, 3.5F}}, {},
       {kKept, kKept, 0x2030, kKept, kKept, kKept, kKept, 0x4060, kKept, kKept, kKept, kKept}, 2.0, 5.0, 3.0, -5.0},
      // 15 * 0.7 is 10.5, and 10.5 / 7 is 1.5, which rounds to 2. With 0.7 / 7 first it would be less.
      {"parallax: the product comes first", 1, 3, 1, {{70, 1, 0, 0}}, {}, {kKept, kKept, 0x2040}, 15.0, 0.7},
      // 27 * 0.7 is 18.9, and 18.9 / 12.6 is 1.5. With 126 * 0.1 or 1 / 12.6 it would be less.
      {"parallax: divisions, not products", 1, 3, 1, {{126, 1, 0, 0}}, {}, {kKept, kKept, 0x2070}, 27.0, 0.7},
  };
  // clang-format on
  for (const Scene& scene : scenes) ExpectAligned(scene);

  // A frame too wide for estimates in floats: the parallax of 2^20 - 4 pixels must be exact.
  Scene wide{"a very wide aux frame", 1, (1 << 20) + 1, 1, {{20, 1, 3, 0}}, {}, {}, 2.0, (1 << 20) - 4.0};
  wide.expected.assign(size_t{1} << 20 | 1, kKept);
  wide.expected[(1 << 20) - 1] = 0x2010;
  ExpectAligned(wide);
}

TEST(ApproximateAlignment, NeverUsesStaleTargets) {
  const AlignmentParams params = WorkingParams(std::bit_cast<CalibrationRecord>(IdentityCalibration()));
  std::vector<uint16_t> frame(size_t{640} * 360);
  for (size_t i = 0; i < frame.size(); ++i) frame[i] = static_cast<uint16_t>(i * 40503);
  AlignmentContext context{};
  const auto &farX = context.farPlaneMapX, &farY = context.farPlaneMapY;
  const auto &lensX = context.distortMapX, &lensY = context.distortMapY;
  const auto makeMaps = [&](auto farPlane, auto distortLut, double ratio) {
    farPlane(context, farX.get(), farY.get(), ratio, ratio);
    distortLut(context, lensX.get(), lensY.get());
  };
  const auto expectPlainWords = [&](const auto& mapX, const auto& mapY, const char* state) {
    std::vector<uint16_t> working(frame.size(), kKept), expected = working;
    const auto run = [&](auto step, uint16_t* words) {
      step(context, frame.data(), words, farX.get(), farY.get(), mapX.get(), mapY.get());
    };
    run(RunApproximateAlignment, working.data());
    run(plain::RunApproximateAlignment, expected.data());
    EXPECT_TRUE(working == expected) << state;
  };

  InitAlignmentContext(context, params, 1);
  makeMaps(AlignmentFarPlane, DistortLUT, 1);
  for (const auto* otherX : {&lensX, &lensY}) {
    PrepareTargets(context);
    expectPlainWords(lensX, lensY, "prepared");
    expectPlainWords(*otherX, lensX, "another table");
    expectPlainWords(lensX, lensY, "after another table");
  }
  PrepareTargets(context);
  makeMaps(AlignmentFarPlane, DistortLUT, 2);
  expectPlainWords(lensX, lensY, "another run");
  PrepareTargets(context);
  ReleaseAlignmentContext(context);
  InitAlignmentContext(context, params, 1);
  makeMaps(plain::AlignmentFarPlane, plain::DistortLUT, 1);  // the library's step marks targets as stale too
  expectPlainWords(lensX, lensY, "another context");
}

}  // namespace
}  // namespace itof
