// Checks calibrations. A finding names something that is wrong, looks wrong, or limits the alignment, and says what to
// do.
#ifndef ITOF_TOOL_CHECK_FINDINGS_H_
#define ITOF_TOOL_CHECK_FINDINGS_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "calibration/calibrationrecord.h"
#include "inspection/comparison.h"

namespace itoftool {

enum class Severity {
  kNote,     // a property of the cameras, with a limit that it sets
  kWarning,  // looks wrong
  kError,    // is wrong
};

/// "note", "warning" or "error".
const char* SeverityName(Severity severity);

/// Another reading of the same numbers, without what is odd in the file as written.
struct OtherReading {
  std::string name;  // e.g. "the rotation transposed"
  Spread moved;      // how far its aligned positions at 1 m are from those of the file as written, in pixels
};

struct Finding {
  Severity severity;
  std::string name;                         // of the kind of finding, e.g. "principal-point"
  std::string camera;                       // "ToF" or "aux"; empty if it is about both, or about the pair
  std::string text;                         // what is wrong, with its effect in pixels where it can be measured
  std::string advice;                       // what to do
  std::vector<OtherReading> readings = {};  // also named in the text, the likeliest first
};

using Findings = std::vector<Finding>;

/// Checks the bytes of a calibration file, and its geometry if itof_init accepts them.
Findings CheckCalibration(std::span<const uint8_t> bytes);

/// Checks the geometry of a record that itof_init accepts.
Findings CheckGeometry(const itof::CalibrationRecord& record);

size_t CountErrors(const Findings& findings);

/// E.g. "0 errors, 1 warning"; with notes, "0 errors, 1 warning, 2 notes".
std::string CountText(const Findings& findings);

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_FINDINGS_H_
