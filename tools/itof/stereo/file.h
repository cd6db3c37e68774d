// Reads and writes the files of OpenCV's stereo calibration.
#ifndef ITOF_TOOL_STEREO_FILE_H_
#define ITOF_TOOL_STEREO_FILE_H_

#include <filesystem>
#include <string>
#include <vector>

#include "stereo/pair.h"

namespace itoftool {

/// Reads a pair from one or several YAML, XML or JSON files. `tofSize` and `auxSize` are used if the files do not
/// contain the sizes; they must not contradict the files and may be empty. Short distortions are padded with 0,
/// rotation vectors become matrices, and auxFlRatio may stay empty. Throws DataError, which names file, key and cause,
/// or the accepted keys of a missing quantity.
StereoPair ReadStereoFiles(const std::vector<std::filesystem::path>& paths, const Quantity& tofSize,
                           const Quantity& auxSize);

/// Returns the format of a file by its extension, as a cv::FileStorage constant. Throws UsageError for other
/// extensions.
int StereoFileFormat(const std::filesystem::path& path);

/// Returns the text of a file from which ReadStereoFiles reads the same numbers. The formats have no -0, so the file
/// has a tiny negative number instead, which is -0 again in single precision. Every quantity except auxFlRatio must
/// have values, and each lens 8 coefficients.
std::string StereoFileText(StereoPair pair, int format);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_FILE_H_
