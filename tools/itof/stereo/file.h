// Reads stereo calibrations in all formats, and writes OpenCV's.
#ifndef ITOF_TOOL_STEREO_FILE_H_
#define ITOF_TOOL_STEREO_FILE_H_

#include <filesystem>
#include <string>
#include <vector>

#include "stereo/pair.h"

namespace itoftool {

/// The parts of a pair that the command line gives. The others are empty.
struct StereoOptions {
  std::string format;         // its name; recognised from the content if empty
  Quantity tofSize, auxSize;  // must not contradict the files
  Quantity rotation;          // 9 numbers, a rotation vector of 3, or a quaternion x, y, z, w
  Quantity translation;       // only together with `rotation`, and only if the files have neither
};

/// The names of the formats, and a help text that describes them.
std::vector<std::string> StereoFormatNames();
std::string StereoFormatsHelp();

/// Reads a pair from one or several YAML, XML or JSON files. Short distortions are padded with 0, rotation vectors
/// become matrices, and auxFlRatio may stay empty. Throws DataError, which names file, key and cause, or the option for
/// what is missing; UsageError for options that the files contradict or that are not a rotation.
StereoPair ReadStereoFiles(const std::vector<std::filesystem::path>& paths, const StereoOptions& options = {});

/// Returns the format of a file by its extension, as a cv::FileStorage constant. Throws UsageError for other
/// extensions.
int StereoFileFormat(const std::filesystem::path& path);

/// Returns the text of a file from which ReadStereoFiles reads the same numbers. The formats have no -0, so the file
/// has a tiny negative number instead, which is -0 again in single precision. Every quantity except auxFlRatio must
/// have values, and each lens 8 coefficients.
std::string StereoFileText(StereoPair pair, int format);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_FILE_H_
