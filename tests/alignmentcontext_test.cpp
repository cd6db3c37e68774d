// How a context brings both cameras to the working sizes.
#include "alignment/alignmentcontext.h"

#include <gtest/gtest.h>

#include <vector>

namespace itof {
namespace {

std::vector<double> Entries(const double (&matrix)[9]) { return {matrix, matrix + 9}; }

TEST(AlignmentContext, ScalesWholeMatricesWithPixelCentresKept) {
  // Calibrated at twice the ToF frame's size, and at a quarter and a half of the aux frame's.
  const AlignmentParams params{1280,
                               720,
                               160,
                               180,
                               640,
                               360,
                               640,
                               360,
                               {1000, 0, 642, 0, 1008, 358, 0, 0, 1},
                               {128, 3, 80, 5, 256, 90, 0.5, 0.25, 2},
                               {},
                               {},
                               {},
                               {}};
  AlignmentContext context{};
  InitAlignmentContext(context, params, 3);
  EXPECT_EQ(context.distortionEnabled, 3);
  // 0.5 * 642 - 0.25, 0.5 * 358 - 0.25.
  EXPECT_EQ(Entries(context.params.tofIntrinsics), (std::vector<double>{500, 0, 320.75, 0, 504, 178.75, 0, 0, 1}));
  // Times 4 plus 1.5 times the last row; times 2 plus 0.5 times the last row; the last row as it was.
  EXPECT_EQ(Entries(context.params.auxIntrinsics),
            (std::vector<double>{512.75, 12.375, 323, 10.25, 512.125, 181, 0.5, 0.25, 2}));
  ReleaseAlignmentContext(context);
  EXPECT_FALSE(context.confidence || context.farPlaneMapX || context.farPlaneMapY || context.distortMapX ||
               context.distortMapY);
}

}  // namespace
}  // namespace itof
