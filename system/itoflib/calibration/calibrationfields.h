// The calibration file as a list, for whoever goes through all of its fields: their names, places and kinds.
#ifndef ITOF_CALIBRATION_CALIBRATIONFIELDS_H_
#define ITOF_CALIBRATION_CALIBRATIONFIELDS_H_

#include <cstddef>
#include <string>

#include "calibration/calibrationrecord.h"

namespace itof {

enum class FieldKind {
  kUnused,
  kFrameWidth,    // of the image that the ToF matrix refers to; has to be that of the frame
  kImageSize,     // another width or height, pixels
  kCameraMatrix,  // 3x3 row-major, pixels
  kRotation,      // 3x3 row-major
  kTranslation,   // depth codes
  kDistortion,    // k1, k2, p1, p2, k3, k4, k5, k6
  kLogged,        // printed, and used for nothing else
};

/// A field of CalibrationRecord: `count` entries of four bytes, floats unless it is unused.
struct CalibrationField {
  const char* name;
  size_t offset;  // in the file, bytes
  size_t count;
  FieldKind kind;
};

#define ITOF_FIELD(name) #name, offsetof(CalibrationRecord, name), sizeof(CalibrationRecord::name) / 4
/// All fields in the order of the file.
inline constexpr CalibrationField kCalibrationFields[] = {
    {ITOF_FIELD(word0), FieldKind::kUnused},
    {ITOF_FIELD(word1), FieldKind::kUnused},
    {ITOF_FIELD(tofCalibWidth), FieldKind::kFrameWidth},
    {ITOF_FIELD(tofCalibHeight), FieldKind::kImageSize},
    {ITOF_FIELD(tofIntrinsics), FieldKind::kCameraMatrix},
    {ITOF_FIELD(rotation), FieldKind::kRotation},
    {ITOF_FIELD(translation), FieldKind::kTranslation},
    {ITOF_FIELD(word25), FieldKind::kUnused},
    {ITOF_FIELD(word26), FieldKind::kUnused},
    {ITOF_FIELD(auxCalibWidth), FieldKind::kImageSize},
    {ITOF_FIELD(auxCalibHeight), FieldKind::kImageSize},
    {ITOF_FIELD(auxIntrinsics), FieldKind::kCameraMatrix},
    {ITOF_FIELD(word38), FieldKind::kUnused},
    {ITOF_FIELD(tofDistortion), FieldKind::kDistortion},
    {ITOF_FIELD(auxDistortion), FieldKind::kDistortion},
    {ITOF_FIELD(word55), FieldKind::kUnused},
    {ITOF_FIELD(aux_fl_ratio), FieldKind::kLogged},
};
#undef ITOF_FIELD

/// Whether the geometry depends on a field.
constexpr bool IsGeometry(FieldKind kind) { return kind != FieldKind::kUnused && kind != FieldKind::kLogged; }

/// The name of an entry, with its index where the field has more than one, e.g. "tofIntrinsics[4]".
inline std::string EntryName(const CalibrationField& field, size_t index) {
  std::string name = field.name;
  if (field.count > 1) name.append("[").append(std::to_string(index)).append("]");
  return name;
}

}  // namespace itof

#endif  // ITOF_CALIBRATION_CALIBRATIONFIELDS_H_
