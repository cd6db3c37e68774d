// Checks calibrations. A finding names something that is wrong, or looks wrong, and says what to do.
#ifndef ITOF_TOOL_CHECK_FINDINGS_H_
#define ITOF_TOOL_CHECK_FINDINGS_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "calibration/calibrationrecord.h"

namespace itoftool {

enum class Severity { kWarning, kError };

struct Finding {
  Severity severity;
  std::string name;    // of the kind of finding, e.g. "principal-point"
  std::string text;    // what is wrong, with its effect in pixels where it can be measured
  std::string advice;  // what to do
};

using Findings = std::vector<Finding>;

/// Checks the bytes of a calibration file, and its geometry if itof_init accepts them.
Findings CheckCalibration(std::span<const uint8_t> bytes);

/// Checks the geometry of a record that itof_init accepts.
Findings CheckGeometry(const itof::CalibrationRecord& record);

size_t CountErrors(const Findings& findings);

/// E.g. "0 errors, 1 warning".
std::string CountText(const Findings& findings);

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_FINDINGS_H_
