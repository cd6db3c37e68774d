// Declares the plain form of a whole frame, the reference for the library's words and for its speed.
#ifndef ITOF_TESTS_PLAIN_PLAINFRAME_H_
#define ITOF_TESTS_PLAIN_PLAINFRAME_H_

#include <cstdint>

#include "alignment/alignmentcontext.h"

namespace plain {

/// Aligns a frame of 640 x 360 depth words in place, as itof_execute_algo does after a successful itof_init, but prints
/// and logs nothing. `context` comes from InitAlignmentContext for frames of this size. The first frame of a run fills its
/// maps for `ratio`; later frames ignore `ratio`.
void AlignFrame(itof::AlignmentContext& context, uint16_t* frame, bool firstOfRun, float ratio);

}  // namespace plain

#endif  // ITOF_TESTS_PLAIN_PLAINFRAME_H_
