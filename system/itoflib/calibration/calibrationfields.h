// Lists the fields of the calibration file with name, place and kind, and reads and writes their entries in a record.
#ifndef ITOF_CALIBRATION_CALIBRATIONFIELDS_H_
#define ITOF_CALIBRATION_CALIBRATIONFIELDS_H_

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "calibration/calibrationrecord.h"

namespace itof {

enum class FieldKind {
  kUnused,
  kTofImageWidth,  // width of the image that the ToF matrix refers to; must be that of the frame
  kImageSize,      // any other width or height, pixels
  kCameraMatrix,   // 3x3 row-major, pixels
  kRotation,       // 3x3 row-major
  kTranslation,    // depth codes
  kDistortion,     // k1, k2, p1, p2, k3, k4, k5, k6
  kLogged,         // printed only
};

/// A field of CalibrationRecord: `count` entries of four bytes, which are floats unless the field is unused.
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
    {ITOF_FIELD(tofCalibWidth), FieldKind::kTofImageWidth},
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

/// Whether the geometry depends on fields of this kind.
constexpr bool IsGeometry(FieldKind kind) { return kind != FieldKind::kUnused && kind != FieldKind::kLogged; }

/// The field of that name. A name that no field has does not compile.
consteval const CalibrationField& FieldNamed(std::string_view name) {
  return *std::ranges::find_if(kCalibrationFields, [&](const CalibrationField& field) { return name == field.name; });
}

/// Calls `use(field, index)` for every entry of every field, in the order of the file.
template <typename Use>
void ForEachEntry(const Use& use) {
  for (const CalibrationField& field : kCalibrationFields) {
    for (size_t index = 0; index < field.count; ++index) use(field, index);
  }
}

/// Offset of an entry in the file, in bytes.
constexpr size_t EntryOffset(const CalibrationField& field, size_t index) { return field.offset + 4 * index; }

/// The four bytes of an entry, as a little-endian number.
inline uint32_t EntryBits(const CalibrationRecord& record, const CalibrationField& field, size_t index) {
  uint32_t bits;
  std::memcpy(&bits, reinterpret_cast<const std::byte*>(&record) + EntryOffset(field, index), sizeof bits);
  return bits;
}

/// An entry of a field that holds floats.
inline float EntryValue(const CalibrationRecord& record, const CalibrationField& field, size_t index) {
  return std::bit_cast<float>(EntryBits(record, field, index));
}

/// Sets an entry of a field that holds floats.
inline void SetEntry(CalibrationRecord& record, const CalibrationField& field, size_t index, float value) {
  std::memcpy(reinterpret_cast<std::byte*>(&record) + EntryOffset(field, index), &value, sizeof value);
}

/// The name of an entry, with its index if the field has more than one, e.g. "tofIntrinsics[4]".
inline std::string EntryName(const CalibrationField& field, size_t index) {
  std::string name = field.name;
  if (field.count > 1) name.append("[").append(std::to_string(index)).append("]");
  return name;
}

}  // namespace itof

#endif  // ITOF_CALIBRATION_CALIBRATIONFIELDS_H_
