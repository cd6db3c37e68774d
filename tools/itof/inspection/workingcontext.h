// Builds the state that the alignment has for a calibration.
#ifndef ITOF_TOOL_INSPECTION_WORKINGCONTEXT_H_
#define ITOF_TOOL_INSPECTION_WORKINGCONTEXT_H_

#include "alignment/alignmentcontext.h"
#include "calibration/calibrationrecord.h"

namespace itoftool {

/// The context that itof_init builds from `record`: camera matrices for 640 x 360, distortion enabled, maps and tables
/// not yet filled.
itof::AlignmentContext MakeWorkingContext(const itof::CalibrationRecord& record);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_WORKINGCONTEXT_H_
