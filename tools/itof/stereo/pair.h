// A camera pair in double precision, each quantity with the place that it comes from, for errors.
#ifndef ITOF_TOOL_STEREO_PAIR_H_
#define ITOF_TOOL_STEREO_PAIR_H_

#include <cstddef>
#include <string>
#include <vector>

#include "support/errors.h"

namespace itoftool {

/// Distortion coefficients that the calibration file has for a lens.
inline constexpr size_t kFileCoefficients = 8;

/// Finite numbers, and where they come from. Without numbers, it was not found.
struct Quantity {
  std::vector<double> values;
  std::string key;   // as the file spells it, or an option of the command line
  std::string file;  // empty: no file
};

/// Throws the DataError of a quantity.
[[noreturn]] inline void Fail(const Quantity& quantity, const std::string& cause) {
  throw DataError((quantity.file.empty() ? "" : quantity.file + ": ") + quantity.key + ": " + cause);
}

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

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_PAIR_H_
