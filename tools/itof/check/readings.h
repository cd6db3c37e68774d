// Lists other readings of a calibration: what its numbers mean if they follow another convention.
#ifndef ITOF_TOOL_CHECK_READINGS_H_
#define ITOF_TOOL_CHECK_READINGS_H_

#include <functional>
#include <string>
#include <vector>

#include "calibration/calibrationrecord.h"

namespace itoftool {

/// The fields that a reading changes.
enum class ReadingPart { kTof, kAux, kBothCameras, kExtrinsics, kAll };

struct Reading {
  std::string name;   // e.g. "the aux camera turned by 90 degrees about its axis"
  std::string group;  // e.g. "axes turned"; several readings have the same
  ReadingPart part;
  /// True if the reading removes flaws that many sound pairs have, such as views that point apart.
  bool isWeak;
  /// True if the reading is as sound as the file as written, so that only a comparison with another unit can
  /// tell which is right.
  bool needsReference;
  /// Changes a record from what is written to what is meant. Returns false if the record has no such reading.
  std::function<bool(itof::CalibrationRecord& record)> apply;
};

/// Append the readings of matrices and lenses, and those of rotation and translation.
void AddCameraReadings(std::vector<Reading>& readings);
void AddPoseReadings(std::vector<Reading>& readings);

/// All readings, those of the cameras before those of the extrinsics, and the commoner ones first.
const std::vector<Reading>& Readings();

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_READINGS_H_
