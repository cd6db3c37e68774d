// How a context brings both cameras to the working sizes.
#include "alignment/alignmentcontext.h"

#include <gtest/gtest.h>

#include <vector>

namespace itof {
namespace {

std::vector<double> Entries(const double (&matrix)[9]) { return {matrix, matrix + 9}; }

TEST(AlignmentContext, ScalesWholeMatricesWithPixelCentresKept) {
  // Calibrated at twice the ToF frame's size, and at a quarter and a half of the aux frame's.
  // clang-format off
  const AlignmentParams params{.tofCalibWidth = 1280, .tofCalibHeight = 720, .auxCalibWidth = 160, .auxCalibHeight = 180,
                               .tofWidth = 640, .tofHeight = 360, .auxWidth = 640, .auxHeight = 360,
                               .tofIntrinsics = {1000, 0, 642, 0, 1008, 358, 0, 0, 1},
                               .auxIntrinsics = {128, 3, 80, 5, 256, 90, 0.5, 0.25, 2},
                               .rotation = {}, .translation = {}, .tofDistortion = {}, .auxDistortion = {}};
  // clang-format on
  AlignmentContext context{};
  InitAlignmentContext(context, params, 3);
  EXPECT_EQ(context.distortionEnabled, 3);
  // 0.5 * 642 - 0.25, 0.5 * 358 - 0.25.
  EXPECT_EQ(Entries(context.params.tofIntrinsics), (std::vector<double>{500, 0, 320.75, 0, 504, 178.75, 0, 0, 1}));
  // Times 4 plus 1.5 times the last row; times 2 plus 0.5 times the last row; the last row as it was.
  EXPECT_EQ(Entries(context.params.auxIntrinsics),
            (std::vector<double>{512.75, 12.375, 323, 10.25, 512.125, 181, 0.5, 0.25, 2}));
  context.targetsPrepared = true;
  ReleaseAlignmentContext(context);
  EXPECT_FALSE(context.confidence || context.farPlaneMapX || context.farPlaneMapY || context.distortMapX ||
               context.distortMapY || context.targetsPrepared);
}

}  // namespace
}  // namespace itof
