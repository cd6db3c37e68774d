// Declares the calibration file, 57 little-endian entries of four bytes without header, version or checksum, and reads
// it.
#ifndef ITOF_CALIBRATION_CALIBRATIONRECORD_H_
#define ITOF_CALIBRATION_CALIBRATIONRECORD_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

namespace itof {

inline constexpr char kCalibrationPath[] = "/vendor/lib64/camera/new_otp_simple.bin";
inline constexpr size_t kCalibrationRecordSize = 228;

/// The file's fields in memory, in the same order and size. Camera matrices and the rotation are 3x3 row-major.
/// Distortion coefficients are in the order k1, k2, p1, p2, k3, k4, k5, k6. A point X in the ToF camera's frame lies at
/// rotation * X + translation in the aux camera's frame. Lengths are in the unit of the depth codes.
struct CalibrationRecord {
  uint32_t word0;  // fields named wordN are not used
  uint32_t word1;
  float tofCalibWidth;  // pixels of the image that tofIntrinsics refers to
  float tofCalibHeight;
  float tofIntrinsics[9];
  float rotation[9];
  float translation[3];
  uint32_t word25;
  uint32_t word26;
  float auxCalibWidth;  // pixels of the image that auxIntrinsics refers to
  float auxCalibHeight;
  float auxIntrinsics[9];
  uint32_t word38;
  float tofDistortion[8];
  float auxDistortion[8];
  uint32_t word55;
  float aux_fl_ratio;  // printed in a log line of every frame; does not affect pixels
};
static_assert(sizeof(CalibrationRecord) == kCalibrationRecordSize);
static_assert(std::is_trivially_copyable_v<CalibrationRecord>);
// Fields and file have the same order and size, so on little-endian machines copying the bytes decodes them.
static_assert(std::endian::native == std::endian::little);

/// Decodes kCalibrationRecordSize bytes. Any bytes give a record; FirstCalibrationFault tells whether it can be used.
CalibrationRecord DecodeCalibrationRecord(const void* bytes);

enum class CalibrationLoadStatus { kLoaded, kUnreadable, kShort };

struct CalibrationLoad {
  CalibrationLoadStatus status;
  /// The record; null unless `status` is kLoaded.
  std::unique_ptr<CalibrationRecord> record;
};

/// Reads the file at kCalibrationPath through the platform's file functions. Bytes after the record are ignored. The
/// status is kUnreadable if the file cannot be opened or read, and kShort if it ends before the record does. Closes the
/// file in every case. Throws std::bad_alloc, before it opens the file.
CalibrationLoad LoadCalibrationRecord();

}  // namespace itof

#endif  // ITOF_CALIBRATION_CALIBRATIONRECORD_H_
