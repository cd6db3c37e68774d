// Converts between a stereo calibration and the calibration record.
#ifndef ITOF_TOOL_STEREO_RECORD_H_
#define ITOF_TOOL_STEREO_RECORD_H_

#include <optional>

#include "calibration/calibrationrecord.h"
#include "stereo/pair.h"

namespace itoftool {

/// A part of an image, in pixels.
struct Window {
  int x, y, width, height;
};

/// Converts the translation from metres to millimetres. Throws UsageError if its key says that it is in millimetres.
void ConvertToMillimetres(StereoPair& pair);

/// Makes the record of a pair whose translation is in millimetres. The part `window` of the ToF camera's image becomes
/// the whole image, at 640 x 360 pixels; without a window, the image must be 640 wide. Unused words are 0, and
/// aux_fl_ratio is 1 if the pair has none. Throws UsageError if the window is not 16:9 or not inside the image; the
/// text suggests one that is. Throws DataError, which names file, key and cause, if the record cannot hold the pair or
/// the library would refuse it.
itof::CalibrationRecord RecordOf(StereoPair pair, const std::optional<Window>& window);

/// Makes the pair of a record that the library accepts, with 8 coefficients per lens and, if it is finite,
/// aux_fl_ratio.
StereoPair PairOf(const itof::CalibrationRecord& record);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_RECORD_H_
