// The files of OpenCV's stereo calibration: which keys hold a camera pair, and what is accepted under them.
#ifndef ITOF_TOOL_STEREOFILE_H_
#define ITOF_TOOL_STEREOFILE_H_

#include <filesystem>
#include <string>
#include <vector>

namespace itoftool {

/// Finite numbers, and where they come from. Without numbers, it was not found.
struct Quantity {
  std::vector<double> values;
  std::string key;   // as the file spells it, or an option of the command line
  std::string file;  // empty: no file
};

/// Throws the DataError of a quantity.
[[noreturn]] void Fail(const Quantity& quantity, const std::string& cause);

/// One camera, in pixels; integer coordinates are pixel centres.
struct StereoCamera {
  Quantity size;        // width and height of the pictures that `matrix` refers to, 1 to 2^31 - 1
  Quantity matrix;      // 3x3 row-major
  Quantity distortion;  // 8, 12 or 14 coefficients in OpenCV's order: k1, k2, p1, p2, k3, k4, k5, k6, ...
};

/// A point X in the ToF camera's frame lies at rotation * X + translation in the aux camera's frame.
struct StereoPair {
  StereoCamera tof;      // camera 1 of the files
  StereoCamera aux;      // camera 2
  Quantity rotation;     // 3x3 row-major
  Quantity translation;  // 3, in the files' unit of length
  Quantity auxFlRatio;   // 1; the geometry does not use it
};

/// The key of a translation that is in millimetres in every file.
inline constexpr char kMillimetreKey[] = "translation_mm";

/// All keys that are accepted, for a help text.
std::string StereoKeysHelp();

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

#endif  // ITOF_TOOL_STEREOFILE_H_
