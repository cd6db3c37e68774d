// One whole frame in its plainest form: what the library's frame is compared with, in its words and in its time.
#ifndef ITOF_TESTS_PLAIN_PLAINFRAME_H_
#define ITOF_TESTS_PLAIN_PLAINFRAME_H_

#include <cstdint>

#include "alignment/alignmentcontext.h"

namespace plain {

/// Aligns a frame of 640 x 360 depth words in place, as itof_execute_algo does after a successful itof_init, but prints
/// and logs nothing. `context` is that of both frames' size. The first frame of a run fills the maps of `context` for
/// `ratio`; later ones ignore it.
void AlignFrame(itof::AlignmentContext& context, uint16_t* frame, bool firstOfRun, float ratio);

}  // namespace plain

#endif  // ITOF_TESTS_PLAIN_PLAINFRAME_H_
