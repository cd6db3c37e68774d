// Compares two calibrations.
#ifndef ITOF_TOOL_INSPECTION_DIFFERENCE_H_
#define ITOF_TOOL_INSPECTION_DIFFERENCE_H_

#include <string>

#include "calibration/calibrationrecord.h"

namespace itoftool {

/// Text for a terminal: the fields that differ, and how far aligned pixels move from A to B. Both records must be ones
/// that itof_init accepts.
std::string DifferenceText(const itof::CalibrationRecord& a, const itof::CalibrationRecord& b);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_DIFFERENCE_H_
