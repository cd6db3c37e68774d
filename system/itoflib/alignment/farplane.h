// First step of a run: where the aux camera sees each ToF pixel at the far plane.
#ifndef ITOF_ALIGNMENT_FARPLANE_H_
#define ITOF_ALIGNMENT_FARPLANE_H_

#include "alignment/alignmentcontext.h"

namespace itof {

/// Depth, in units of ten depth codes, at which a ToF pixel shows no parallax that a float map could hold.
inline constexpr double kFarPlaneDepth = 2147483647.0;

/// Sets `auxRatioIntrinsics` of `context` to the aux camera matrix resized by `scaleX` and `scaleY`, and, for each ToF
/// pixel, the two maps (tofWidth x tofHeight entries, not overlapping) to the column and row of that resized ideal image at which the
/// aux camera sees the pixel at the far plane. With `distortionEnabled` the ToF pixel is undistorted first, by three
/// fixed-point rounds of the inverse lens model, as OpenCV's undistortPoints does them. Entries of a pixel whose point
/// is not in front of the aux camera are left as they are.
void AlignmentFarPlane(AlignmentContext& context, float* farPlaneMapX, float* farPlaneMapY, double scaleX,
                       double scaleY);

}  // namespace itof

#endif  // ITOF_ALIGNMENT_FARPLANE_H_
