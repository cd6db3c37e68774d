// The calibration file as the tool's user gave it.
#ifndef ITOF_TOOL_FILES_CALIBRATIONFILE_H_
#define ITOF_TOOL_FILES_CALIBRATIONFILE_H_

#include <filesystem>
#include <string>

#include "calibration/calibrationrecord.h"

namespace itoftool {

struct CalibrationFile {
  std::filesystem::path path;
  itof::CalibrationRecord record;
  std::string sha256;  // of the record's 228 bytes, in hexadecimal
};

/// Reads a calibration that the library will accept. Throws DataError, which names the file, and the field that makes
/// it unusable.
CalibrationFile ReadCalibrationFile(const std::filesystem::path& path);

}  // namespace itoftool

#endif  // ITOF_TOOL_FILES_CALIBRATIONFILE_H_
