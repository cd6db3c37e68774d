// From a stereo calibration to the calibration file's record and back: what the record cannot hold is found here.
#ifndef ITOF_TOOL_STEREO_RECORD_H_
#define ITOF_TOOL_STEREO_RECORD_H_

#include <optional>

#include "calibration/calibrationrecord.h"
#include "stereo/pair.h"

namespace itoftool {

/// A part of an image, in its pixels.
struct Window {
  int x, y, width, height;
};

/// The record of a pair whose translation is in millimetres. The part `window` of the ToF camera's image becomes the
/// whole image, at 640 x 360 pixels; without a window, the image must be 640 wide. Unused words are 0, and aux_fl_ratio
/// is 1 if the pair has none. Throws UsageError, with a window that would do, unless the window is of 16:9 and inside
/// the image; DataError, which names file, key and cause, if the record cannot hold the pair or the library would refuse
/// it.
itof::CalibrationRecord RecordOf(StereoPair pair, const std::optional<Window>& window);

/// The pair of a record that the library accepts, with 8 coefficients each. An aux_fl_ratio that is not finite is left
/// out.
StereoPair PairOf(const itof::CalibrationRecord& record);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_RECORD_H_
