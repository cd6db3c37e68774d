// Converts between a stereo calibration and the calibration record.
#ifndef ITOF_TOOL_STEREO_RECORD_H_
#define ITOF_TOOL_STEREO_RECORD_H_

#include <optional>
#include <string>
#include <vector>

#include "calibration/calibrationrecord.h"
#include "stereo/pair.h"

namespace itoftool {

/// A part of an image, in pixels.
struct Window {
  int x, y, width, height;
};

/// The units of length that ConvertToMillimetres knows.
std::vector<std::string> UnitNames();

/// Converts the translation to millimetres from the unit of its files, or, if they do not say it, from `unit`;
/// millimetres if that is empty. Throws UsageError if the files say another unit than `unit`.
void ConvertToMillimetres(StereoPair& pair, const std::string& unit);

/// Makes the record of a pair whose translation is in millimetres. The part `tofWindow` of the ToF camera's image
/// becomes the whole image, at 640 x 360 pixels; without a window, the image must be 640 wide. The part `auxWindow` of
/// the aux camera's image becomes its whole image. Unused words are 0, and aux_fl_ratio is 1 if the pair has none.
/// Throws UsageError if a window is not 16:9 or not inside the image; the text suggests one that is. Throws DataError,
/// which names file, key and cause, if the record cannot hold the pair or the library would refuse it.
itof::CalibrationRecord RecordOf(StereoPair pair, const std::optional<Window>& tofWindow,
                                 const std::optional<Window>& auxWindow = {});

/// Makes the pair of a record that the library accepts, with 8 coefficients per lens and, if it is finite,
/// aux_fl_ratio.
StereoPair PairOf(const itof::CalibrationRecord& record);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_RECORD_H_
