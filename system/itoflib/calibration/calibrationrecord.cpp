// Reads the calibration file through the platform's file functions, which know the device's partitions.
#include "calibration/calibrationrecord.h"

#include <zerun/osutils.h>

#include <cstdio>
#include <cstring>
#include <utility>

namespace itof {

CalibrationRecord DecodeCalibrationRecord(const void* bytes) {
  CalibrationRecord record;
  std::memcpy(&record, bytes, sizeof record);
  return record;
}

CalibrationLoad LoadCalibrationRecord() {
  auto record = std::make_unique_for_overwrite<CalibrationRecord>();
  FILE* file = Zerun::OsUtils::FOpen(kCalibrationPath, "rb");
  if (file == nullptr) return {CalibrationLoadStatus::kUnreadable, nullptr};
  const size_t records = Zerun::OsUtils::FRead(record.get(), kCalibrationRecordSize, kCalibrationRecordSize, 1, file);
  // The handle is a stream of the C library, which tells a failed read from the end of the file.
  const bool failed = std::ferror(file) != 0;
  Zerun::OsUtils::FClose(file);
  if (records != 1) return {failed ? CalibrationLoadStatus::kUnreadable : CalibrationLoadStatus::kShort, nullptr};
  return {CalibrationLoadStatus::kLoaded, std::move(record)};
}

}  // namespace itof
