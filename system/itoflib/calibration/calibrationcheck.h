// Finds the values in a calibration record that the alignment cannot work with.
#ifndef ITOF_CALIBRATION_CALIBRATIONCHECK_H_
#define ITOF_CALIBRATION_CALIBRATIONCHECK_H_

#include <cstddef>
#include <optional>

#include "calibration/calibrationfields.h"
#include "calibration/calibrationrecord.h"

namespace itof {

/// Returns why the alignment cannot work with `value` at an entry of a field, as a phrase that follows the value, e.g.
/// "is not finite"; null if it can. Needed are image sizes that are at least 1 and fit a 32-bit integer after
/// truncation, a ToF calibration width of 640, focal lengths above 0, and finite values in every field that the
/// geometry uses. Unused words and aux_fl_ratio may hold anything.
const char* EntryFault(const CalibrationField& field, size_t index, float value);

/// A value that makes a record unusable.
struct CalibrationFault {
  const CalibrationField* field;
  size_t index;  // of the entry in the field
  float value;
  const char* cause;  // from EntryFault
};

/// Returns the first fault in the order of the file, or nothing if the record can be used. Allocates nothing.
std::optional<CalibrationFault> FirstCalibrationFault(const CalibrationRecord& record);

}  // namespace itof

#endif  // ITOF_CALIBRATION_CALIBRATIONCHECK_H_
