// Declares the second step of a run, which finds where the aux camera's lens puts each ideal position.
#ifndef ITOF_ALIGNMENT_DISTORTLUT_H_
#define ITOF_ALIGNMENT_DISTORTLUT_H_

#include "alignment/alignmentcontext.h"

namespace itof {

/// Fills the lens table `mapX`, `mapY` (tofWidth x tofHeight entries each, not overlapping). Entry (x, y) is for the
/// ideal position (x, y) of the aux camera at the run's ratio. It gets that point's column and row in the real,
/// distorted aux image at the working size, without the ratio: at a ratio of r the table also scales by 1 / r. The lens
/// model is OpenCV's rational one; see CameraModel.
///
/// Reads `auxRatioIntrinsics`, so AlignmentFarPlane must run first. Runs whether or not `distortionEnabled` is set. An
/// entry whose position is outside the ToF grid, or not a number, keeps its value.
void DistortLUT(const AlignmentContext& context, float* mapX, float* mapY);

}  // namespace itof

#endif  // ITOF_ALIGNMENT_DISTORTLUT_H_
