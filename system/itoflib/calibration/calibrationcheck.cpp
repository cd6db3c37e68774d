// The boundary at which bad calibrations stop: behind it the alignment divides by sizes and focal lengths unasked.
#include "calibration/calibrationcheck.h"

#include <cmath>
#include <cstring>

#include "calibration/calibrationfields.h"
#include "pixelwords.h"

namespace itof {
namespace {

/// What is wrong with entry `index` of a field that the geometry uses, or null.
const char* Cause(FieldKind kind, size_t index, float value) {
  if (!std::isfinite(value)) return "is not finite";
  const bool isSize = kind == FieldKind::kImageSize || kind == FieldKind::kFrameWidth;
  if (isSize && value < 1) return "is below 1 pixel";
  if (isSize && value >= 2147483648.0F) return "is beyond a 32-bit integer";
  // The frame buffers agree in size for this width only.
  const bool isFrameWidth = std::trunc(value) == kFrameWidth;
  if (kind == FieldKind::kFrameWidth && !isFrameWidth) return "is not the frame's width of 640 pixels";
  const bool isFocalLength = kind == FieldKind::kCameraMatrix && (index == 0 || index == 4);
  if (isFocalLength && value <= 0) return "is no focal length above 0";
  return nullptr;
}

}  // namespace

std::optional<CalibrationFault> FindCalibrationFault(const CalibrationRecord& record, size_t from) {
  const auto* bytes = reinterpret_cast<const std::byte*>(&record);
  for (const CalibrationField& field : kCalibrationFields) {
    if (!IsGeometry(field.kind)) continue;
    for (size_t index = 0; index < field.count; ++index) {
      const size_t offset = field.offset + index * sizeof(float);
      if (offset < from) continue;
      float value;
      std::memcpy(&value, bytes + offset, sizeof value);
      if (const char* cause = Cause(field.kind, index, value)) {
        return CalibrationFault{EntryName(field, index), offset, value, cause};
      }
    }
  }
  return std::nullopt;
}

}  // namespace itof
