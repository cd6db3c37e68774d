// The boundary at which bad calibrations stop: behind it the alignment divides by sizes and focal lengths unasked.
#include "calibration/calibrationcheck.h"

#include <cmath>
#include <cstring>

#include "pixelwords.h"

namespace itof {
namespace {

enum class Need { kImageSize, kFrameWidth, kCameraMatrix, kFinite };

struct FieldGroup {
  const char* name;
  size_t offset;
  size_t size;  // in bytes; entries are floats, and a single one is named without an index
  Need need;
};

#define ITOF_FIELD(name) #name, offsetof(CalibrationRecord, name), sizeof(CalibrationRecord::name)
constexpr FieldGroup kGeometryFields[] = {
    {ITOF_FIELD(tofCalibWidth), Need::kFrameWidth},   {ITOF_FIELD(tofCalibHeight), Need::kImageSize},
    {ITOF_FIELD(tofIntrinsics), Need::kCameraMatrix}, {ITOF_FIELD(rotation), Need::kFinite},
    {ITOF_FIELD(translation), Need::kFinite},         {ITOF_FIELD(auxCalibWidth), Need::kImageSize},
    {ITOF_FIELD(auxCalibHeight), Need::kImageSize},   {ITOF_FIELD(auxIntrinsics), Need::kCameraMatrix},
    {ITOF_FIELD(tofDistortion), Need::kFinite},       {ITOF_FIELD(auxDistortion), Need::kFinite},
};
#undef ITOF_FIELD

/// What is wrong with entry `index` of a group, or null.
const char* Cause(Need need, size_t index, float value) {
  if (!std::isfinite(value)) return "is not finite";
  const bool isSize = need == Need::kImageSize || need == Need::kFrameWidth;
  if (isSize && value < 1) return "is below 1 pixel";
  if (isSize && value >= 2147483648.0F) return "is beyond a 32-bit integer";
  // The frame buffers agree in size for this width only.
  if (need == Need::kFrameWidth && std::trunc(value) != kFrameWidth) return "is not the frame's width of 640 pixels";
  const bool isFocalLength = need == Need::kCameraMatrix && (index == 0 || index == 4);
  if (isFocalLength && value <= 0) return "is no focal length above 0";
  return nullptr;
}

}  // namespace

std::optional<CalibrationFault> FindCalibrationFault(const CalibrationRecord& record) {
  const auto* bytes = reinterpret_cast<const std::byte*>(&record);
  for (const FieldGroup& group : kGeometryFields) {
    const size_t count = group.size / sizeof(float);
    for (size_t index = 0; index < count; ++index) {
      const size_t offset = group.offset + index * sizeof(float);
      float value;
      std::memcpy(&value, bytes + offset, sizeof value);
      if (const char* cause = Cause(group.need, index, value)) {
        std::string name = group.name;
        if (count > 1) name.append("[").append(std::to_string(index)).append("]");
        return CalibrationFault{name, offset, value, cause};
      }
    }
  }
  return std::nullopt;
}

}  // namespace itof
