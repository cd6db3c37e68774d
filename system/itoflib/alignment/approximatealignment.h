// Declares the step of every frame, which moves each depth pixel to where the aux camera sees it.
#ifndef ITOF_ALIGNMENT_APPROXIMATEALIGNMENT_H_
#define ITOF_ALIGNMENT_APPROXIMATEALIGNMENT_H_

#include "alignment/alignmentcontext.h"

namespace itof {

/// Fills the target table from the context's own lens table, once for all following calls of RunApproximateAlignment
/// with that lens table. It is optional: without it every such call fills the table itself, which is a seventh of its
/// work. The next AlignmentFarPlane or InitAlignmentContext ends its effect. Call it again after changing the lens
/// table, a size in `params` or `distortionEnabled` in any other way. Throws like RunApproximateAlignment.
void PrepareTargets(AlignmentContext& context);

/// Moves the pixels of `frame` (tofWidth x tofHeight depth words, ToF view) into `workingBuffer` (auxWidth x auxHeight
/// working words, aux view).
///
/// A pixel's ideal position is its far-plane position plus its parallax. The parallax is focal length times translation
/// divided by depth, for the x and y translation only. The ideal position is rounded to an ideal cell. With
/// `distortionEnabled`, a cell inside the ToF grid is looked up in the lens table, and the entry is truncated:
/// cell (u, v) of the aux frame gets the positions [u, u + 1) x [v, v + 1). Pixels that land outside the aux frame are
/// dropped.
///
/// There is no depth test: if several pixels have one target, the last in row-major order stays. A pixel of depth code
/// 0 goes to the target of the last pixel with depth before it in this frame, or, if there is none, to that of ideal
/// position (0, 0). It writes its confidence there, without depth. Cells that no pixel reaches keep their content.
///
/// Also writes `context.confidence` for every ToF pixel, and prints one line with the processor time to standard
/// output.
///
/// The far-plane maps and the lens table (`distortMapX`, `distortMapY`) have tofWidth x tofHeight entries, filled for
/// this run by AlignmentFarPlane and DistortLUT. No buffer may overlap another. Returns 1. Allocates nothing for a
/// context from InitAlignmentContext. For any other context it may have to enlarge `targets`; if that fails it throws
/// std::bad_alloc and has written nothing.
int32_t RunApproximateAlignment(AlignmentContext& context, const uint16_t* frame, uint16_t* workingBuffer,
                                const float* farPlaneMapX, const float* farPlaneMapY, const float* distortMapX,
                                const float* distortMapY);

}  // namespace itof

#endif  // ITOF_ALIGNMENT_APPROXIMATEALIGNMENT_H_
