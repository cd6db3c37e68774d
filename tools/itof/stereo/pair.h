// Defines a camera pair in double precision. Each quantity knows where it comes from, for messages.
#ifndef ITOF_TOOL_STEREO_PAIR_H_
#define ITOF_TOOL_STEREO_PAIR_H_

#include <cstddef>
#include <string>
#include <vector>

#include "support/errors.h"

namespace itoftool {

/// Number of distortion coefficients per lens in the calibration file.
inline constexpr size_t kFileCoefficients = 8;

/// Finite numbers, and where they come from. `values` is empty if nothing was found.
struct Quantity {
  std::vector<double> values;
  std::string key;        // as in the file, or an option of the command line
  std::string file;       // empty for an option
  bool isCommon = false;  // for a size: whether the key is that of both cameras
};

/// Throws a DataError that names the quantity.
[[noreturn]] inline void Fail(const Quantity& quantity, const std::string& cause) {
  throw DataError((quantity.file.empty() ? "" : quantity.file + ": ") + quantity.key + ": " + cause);
}

/// One camera, in pixels; integer coordinates are pixel centres.
struct StereoCamera {
  Quantity size;              // width and height of the image that `matrix` refers to, 1 to 2^31 - 1
  Quantity matrix;            // 3x3 row-major
  Quantity distortion;        // 8, 12 or 14 coefficients in OpenCV's order: k1, k2, p1, p2, k3, k4, k5, k6, ...
  bool hasModelName = false;  // whether the file says that the coefficients are in this order
};

/// A point X in the ToF camera's frame lies at rotation * X + translation in the aux camera's frame.
struct StereoPair {
  StereoCamera tof;                // camera 1 of the files
  StereoCamera aux;                // camera 2
  Quantity rotation;               // 3x3 row-major
  Quantity translation;            // 3 numbers, in the files' unit of length
  Quantity auxFlRatio;             // 1 number; the geometry does not use it
  std::string unit;                // of the translation: um, mm, cm, m or in; empty if the files do not say
  std::vector<std::string> notes;  // for the user, one line each
};

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_PAIR_H_
