// Second step of a run: where the aux camera's lens puts each ideal position.
#ifndef ITOF_ALIGNMENT_DISTORTLUT_H_
#define ITOF_ALIGNMENT_DISTORTLUT_H_

#include "alignment/alignmentcontext.h"

namespace itof {

/// For each position of a grid of tofWidth x tofHeight ideal aux positions at the run's ratio, stores the column and
/// row of the distorted aux image of the working size, without the ratio, in `mapX` and `mapY` (tofWidth x tofHeight
/// entries, not overlapping). So at a ratio of r the table also scales by 1 / r. Runs after AlignmentFarPlane, whose
/// `auxRatioIntrinsics` it reads, and whatever `distortionEnabled` holds. Entries whose position falls outside the
/// grid, or is not a number, are left as they are. The lens model is OpenCV's rational one; see CameraModel.
void DistortLUT(const AlignmentContext& context, float* mapX, float* mapY);

}  // namespace itof

#endif  // ITOF_ALIGNMENT_DISTORTLUT_H_
