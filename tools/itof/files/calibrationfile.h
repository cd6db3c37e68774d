// Reads calibration files.
#ifndef ITOF_TOOL_FILES_CALIBRATIONFILE_H_
#define ITOF_TOOL_FILES_CALIBRATIONFILE_H_

#include <filesystem>
#include <string>
#include <vector>

#include "calibration/calibrationrecord.h"

namespace itoftool {

struct CalibrationFile {
  std::filesystem::path path;
  itof::CalibrationRecord record;
  std::string sha256;  // of the record's 228 bytes, in hexadecimal
};

/// Reads a calibration file, which may be a pipe. Throws DataError if the library would refuse the calibration; the
/// text names the file and the field at fault.
CalibrationFile ReadCalibrationFile(const std::filesystem::path& path);

/// The files of a folder that look like calibrations, by name: those of 228 bytes and those named *.bin, neither hidden
/// nor in a folder below. Throws DataError if there are none or the folder cannot be read.
std::vector<std::filesystem::path> CalibrationFilesIn(const std::filesystem::path& folder);

}  // namespace itoftool

#endif  // ITOF_TOOL_FILES_CALIBRATIONFILE_H_
