// The files of OpenCV's stereo calibration, read and written.
#ifndef ITOF_TOOL_STEREO_FILE_H_
#define ITOF_TOOL_STEREO_FILE_H_

#include <filesystem>
#include <string>
#include <vector>

#include "stereo/pair.h"

namespace itoftool {

/// The pair that YAML, XML or JSON files hold together. `tofSize` and `auxSize` may be without numbers; else they stand
/// for what the files lack, and must not contradict them. Shorter distortions are filled up with 0, rotation vectors
/// become matrices, and auxFlRatio may remain without numbers. Throws DataError, which names file, key and cause, or the
/// accepted keys of what is missing.
StereoPair ReadStereoFiles(const std::vector<std::filesystem::path>& paths, const Quantity& tofSize,
                           const Quantity& auxSize);

/// The format, as cv::FileStorage numbers them, that goes with the extension of a file. Throws UsageError.
int StereoFileFormat(const std::filesystem::path& path);

/// A file from which ReadStereoFiles gets the same numbers, except that a negative number next to 0 stands for -0, which
/// the formats do not have; in single precision it is -0 again. All but auxFlRatio must be there, with 8 coefficients.
std::string StereoFileText(StereoPair pair, int format);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_FILE_H_
