// The step of every frame: moves each depth pixel to where the aux camera sees it.
#ifndef ITOF_ALIGNMENT_APPROXIMATEALIGNMENT_H_
#define ITOF_ALIGNMENT_APPROXIMATEALIGNMENT_H_

#include "alignment/alignmentcontext.h"

namespace itof {

/// Makes `targets` from the context's own distortion maps, for all calls of RunApproximateAlignment with these maps that
/// follow; without it, each call makes them anew, which is a seventh of its work. Whoever has called it calls it again
/// whenever these maps, a size in `params` or `distortionEnabled` have changed. Throws as RunApproximateAlignment.
void PrepareTargets(AlignmentContext& context);

/// Re-projects `frame` (tofWidth x tofHeight depth words) into `workingBuffer` (auxWidth x auxHeight, working words). A
/// pixel's ideal position is its far-plane position plus a parallax, focal length times translation over depth, of the
/// x and y translation only. With `distortionEnabled` the position, rounded, is looked up in the distortion maps and
/// the entry's fraction is cut, so that cell (u, v) collects the positions [u, u + 1) x [v, v + 1); an ideal position
/// outside the ToF grid is not looked up. Pixels whose target is outside the aux frame are dropped.
///
/// There is no depth test: of several pixels with one target, the last in row-major order stays. A pixel of depth code
/// 0 goes to the position of the last pixel before it that had depth, in this frame, or to (0, 0), and writes its
/// confidence with no depth there. Cells that no pixel reaches keep their content.
///
/// Writes `confidence` of `context` for every ToF pixel, and one line with the processor time taken to standard output.
/// All maps have tofWidth x tofHeight entries and are those that AlignmentFarPlane and DistortLUT filled for the run.
/// No buffer may overlap another. Returns 1. Allocates nothing for a context from InitAlignmentContext; for one built
/// otherwise it makes `targets` large enough first, and throws std::bad_alloc, nothing written, if it cannot.
int32_t RunApproximateAlignment(AlignmentContext& context, const uint16_t* frame, uint16_t* workingBuffer,
                                const float* farPlaneMapX, const float* farPlaneMapY, const float* distortMapX,
                                const float* distortMapY);

}  // namespace itof

#endif  // ITOF_ALIGNMENT_APPROXIMATEALIGNMENT_H_
