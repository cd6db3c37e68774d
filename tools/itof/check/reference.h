// Checks a calibration against that of a unit that is known to be good.
#ifndef ITOF_TOOL_CHECK_REFERENCE_H_
#define ITOF_TOOL_CHECK_REFERENCE_H_

#include "calibration/calibrationrecord.h"
#include "check/findings.h"

namespace itoftool {

/// The findings of `record` that `good` does not have, and a finding "reference": how far aligned positions are from
/// those of `good`, and which reading of `record` brings them near. Both records must be ones that itof_init accepts, and `good` must
/// have no errors.
Findings CheckAgainst(const itof::CalibrationRecord& good, const itof::CalibrationRecord& record);

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_REFERENCE_H_
