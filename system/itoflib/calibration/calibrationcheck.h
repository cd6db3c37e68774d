// What makes a calibration record unusable, field by field. The library refuses such a record; tools print the text.
#ifndef ITOF_CALIBRATION_CALIBRATIONCHECK_H_
#define ITOF_CALIBRATION_CALIBRATIONCHECK_H_

#include <cstddef>
#include <optional>
#include <string>

#include "calibration/calibrationrecord.h"

namespace itof {

/// The first field of a record that the alignment cannot work with.
struct CalibrationFault {
  std::string field;  // as CalibrationRecord names it, e.g. "tofIntrinsics[4]"
  size_t offset;      // of the field in the file, in bytes
  float value;
  const char* cause;  // a phrase that follows the value, e.g. "is not finite"
};

/// The first fault of `record` at byte `from` of the file or behind it, or nothing if there is none. A record without
/// any can be used. Needed: image sizes that are at least 1 and fit a 32-bit integer after their fraction is cut, a ToF
/// calibration width of 640, focal lengths above 0, and finite values in every field that the geometry uses. Unused
/// words and aux_fl_ratio may hold anything.
std::optional<CalibrationFault> FindCalibrationFault(const CalibrationRecord& record, size_t from = 0);

}  // namespace itof

#endif  // ITOF_CALIBRATION_CALIBRATIONCHECK_H_
