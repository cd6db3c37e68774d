// Checks by hand how a context scales both cameras to the working sizes, and the matrix product that does it.
#include "alignment/alignmentcontext.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "alignment/matrixmultiply.h"

namespace itof {
namespace {

std::vector<double> Entries(const double (&matrix)[9]) { return {matrix, matrix + 9}; }

TEST(AlignmentContext, ScalesWholeMatricesAndKeepsPixelCentres) {
  // Calibrated at twice the ToF frame's size, and at a quarter of the aux frame's width and half its height.
  // clang-format off
  const AlignmentParams params{.tofCalibWidth = 1280, .tofCalibHeight = 720, .auxCalibWidth = 160, .auxCalibHeight = 180,
                               .tofWidth = 640, .tofHeight = 360, .auxWidth = 640, .auxHeight = 360,
                               .tofIntrinsics = {1000, 0, 642, 0, 1008, 358, 0, 0, 1},
                               .auxIntrinsics = {128, 3, 80, 5, 256, 90, 0.5, 0.25, 2},
                               .rotation = {}, .translation = {}, .tofDistortion = {}, .auxDistortion = {}};
  // clang-format on
  AlignmentContext context{};
  context.targetsPrepared = true;
  InitAlignmentContext(context, params, 3);
  EXPECT_FALSE(context.targetsPrepared);
  EXPECT_EQ(context.distortionEnabled, 3);
  // 0.5 * 642 - 0.25, 0.5 * 358 - 0.25.
  EXPECT_EQ(Entries(context.params.tofIntrinsics), (std::vector<double>{500, 0, 320.75, 0, 504, 178.75, 0, 0, 1}));
  // Row 0: times 4 plus 1.5 times the last row. Row 1: times 2 plus 0.5 times the last row. The last row is unchanged.
  EXPECT_EQ(Entries(context.params.auxIntrinsics),
            (std::vector<double>{512.75, 12.375, 323, 10.25, 512.125, 181, 0.5, 0.25, 2}));
  context.targetsPrepared = true;
  ReleaseAlignmentContext(context);
  EXPECT_FALSE(context.confidence || context.farPlaneMapX || context.farPlaneMapY || context.distortMapX ||
               context.distortMapY || context.targetsPrepared);
}

TEST(MatrixMultiply, FusesStepsInsideTheInnerColumns) {
  const double nan = std::nan(""), e = 1 + 0x1p-30;
  const double a[] = {-1, e, 7, 3, nan, 7}, b[] = {1, 2, e, 4};  // only two of the three columns of `a` take part
  std::vector<double> out(5, 9);
  MatrixMultiply(out.data(), a, b, 2, 3, 2, 2);
  EXPECT_EQ(out[0], 0x1p-29 + 0x1p-60);  // e * e - 1; rounding the product first loses 2^-60
  EXPECT_EQ(out[1], 2 + 0x1p-28);
  EXPECT_TRUE(std::isnan(out[2]) && std::isnan(out[3]));
  EXPECT_EQ(out[4], 9);
  MatrixMultiply(out.data(), a, b, 1, 3, 0, 2);
  MatrixMultiply(out.data() + 2, a, b, 0, 3, 2, 2);
  EXPECT_EQ(out[0], 0);
  EXPECT_EQ(out[1], 0);
  EXPECT_TRUE(std::isnan(out[2]));
}

}  // namespace
}  // namespace itof
