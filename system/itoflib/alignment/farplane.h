// Declares the first step of a run, which finds where the aux camera sees each ToF pixel at the far plane.
#ifndef ITOF_ALIGNMENT_FARPLANE_H_
#define ITOF_ALIGNMENT_FARPLANE_H_

#include "alignment/alignmentcontext.h"

namespace itof {

/// Depth of the far plane, in units of ten depth codes. The parallax there is too small to change a float map.
inline constexpr double kFarPlaneDepth = 2147483647.0;

/// Starts a run: sets `context.auxRatioIntrinsics` to the aux camera matrix resized by `scaleX` and `scaleY`, and fills
/// the far-plane maps (tofWidth x tofHeight entries each, not overlapping). The entry of a ToF pixel gets the column
/// and row of that resized ideal aux image at which the aux camera sees the pixel at the far plane. With
/// `distortionEnabled` the ToF pixel is undistorted first, by three fixed-point rounds of the inverse lens model, like
/// OpenCV's undistortPoints. If the pixel's point is not in front of the aux camera, its entries keep their values.
/// Marks prepared targets as stale.
void AlignmentFarPlane(AlignmentContext& context, float* farPlaneMapX, float* farPlaneMapY, double scaleX,
                       double scaleY);

}  // namespace itof

#endif  // ITOF_ALIGNMENT_FARPLANE_H_
