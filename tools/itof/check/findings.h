// What is wrong, or looks wrong, with a calibration.
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
  std::string text;    // what there is, in words and pixels
  std::string advice;  // what to do
};

/// Judges the bytes of a calibration file. Where they cannot be geometry, nothing is said about the geometry.
std::vector<Finding> CheckCalibration(std::span<const uint8_t> bytes);

/// Judges the geometry of a record that itof_init accepts.
std::vector<Finding> CheckGeometry(const itof::CalibrationRecord& record);

size_t CountErrors(const std::vector<Finding>& findings);

/// E.g. "0 errors, 1 warning".
std::string CountText(const std::vector<Finding>& findings);

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_FINDINGS_H_
