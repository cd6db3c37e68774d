// Rejects calibrations the alignment cannot work with; it divides by sizes and focal lengths without checking them.
#include "calibration/calibrationcheck.h"

#include <cmath>

#include "framesize.h"

namespace itof {

const char* EntryFault(const CalibrationField& field, size_t index, float value) {
  if (!IsGeometry(field.kind)) return nullptr;
  if (!std::isfinite(value)) return "is not finite";
  const bool isSize = field.kind == FieldKind::kImageSize || field.kind == FieldKind::kTofImageWidth;
  if (isSize && value < 1) return "is below 1 pixel";
  if (isSize && value >= 2147483648.0F) return "is beyond a 32-bit integer";
  // The frame buffers agree in size for this width only.
  const bool isFrameWidth = std::trunc(value) == kFrameWidth;
  if (field.kind == FieldKind::kTofImageWidth && !isFrameWidth) return "is not the frame's width of 640 pixels";
  const bool isFocalLength = field.kind == FieldKind::kCameraMatrix && (index == 0 || index == 4);
  if (isFocalLength && value <= 0) return "is not a focal length above 0";
  return nullptr;
}

std::optional<CalibrationFault> FirstCalibrationFault(const CalibrationRecord& record) {
  for (const CalibrationField& field : kCalibrationFields) {
    for (size_t index = 0; index < field.count; ++index) {
      const float value = EntryValue(record, field, index);
      if (const char* cause = EntryFault(field, index, value)) return CalibrationFault{&field, index, value, cause};
    }
  }
  return std::nullopt;
}

}  // namespace itof
