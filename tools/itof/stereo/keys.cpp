// Lists the keys that OpenCV's samples and common programs use, and formats them for messages.
#include "stereo/keys.h"

#include <cstddef>

#include "support/text.h"

namespace itoftool {

const Spellings kSpellings[6] = {
    {QuantityKind::kSize,
     "image size",
     {"imageSize#", "image_size#", "image_size_#", "cameraResolution#", "imageWidth#+imageHeight#",
      "image_width#+image_height#", "image_width_#+image_height_#", "image_Width#+image_Height#",
      "image_Width_#+image_Height_#", "@.width+@.height",
      // For both cameras.
      "imageSize", "image_size", "cameraResolution", "imageWidth+imageHeight", "image_width+image_height",
      "image_Width+image_Height"}},
    {QuantityKind::kMatrix,
     "camera matrix",
     {"M#", "K#", "cameraMatrix#", "camera_matrix#", "camera_matrix_#", "@.fx+@.fy+@.cx+@.cy"}},
    {QuantityKind::kDistortion,
     "distortion",
     {"D#", "distCoeffs#", "dist_coeffs#", "dist_coeffs_#", "distortion_coefficients#", "distortion_coefficients_#",
      "@.k1+@.k2+@.p1+@.p2+@.k3+@.k4+@.k5+@.k6"}},
    {QuantityKind::kRotation, "rotation", {"R", "R12", "rotation"}},
    {QuantityKind::kTranslation, "translation", {"T", "T12", kMillimetreKey}},
    {QuantityKind::kRatio, "aux_fl_ratio", {"aux_fl_ratio"}},
};

std::string KeyOf(const std::string& pattern, int camera) {
  std::string key;
  for (const char c : pattern) {
    if (c == '#') {
      key += camera == 1 ? "1" : "2";
    } else if (c == '@') {
      key += camera == 1 ? "depth" : "color";
    } else {
      key += c;
    }
  }
  return key;
}

std::vector<std::string> SplitKeys(const std::string& keys) {
  std::vector<std::string> parts;
  for (size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
    end = keys.find('+', start);
    parts.push_back(keys.substr(start, end == std::string::npos ? end : end - start));
  }
  return parts;
}

std::string StereoKeysHelp() {
  std::string text = Wrap(
      "Accepted keys (# is 1 for the ToF camera, 2 for the aux camera, or omitted for a size of both; @ is depth or "
      "color; keys joined by + hold one number each):",
      0);
  for (const Spellings& spellings : kSpellings) {
    text += std::string("  ") + spellings.name + "\n" + Wrap(Joined({spellings.keys.begin(), spellings.keys.end()}), 4);
  }
  return text +
         Wrap(
             "A matrix is in OpenCV's form, a list of rows, or a list of all numbers; a rotation may also be a "
             "rotation "
             "vector of 3 numbers in radians. A distortion has 4, 5 or 8 coefficients in OpenCV's order, k1 k2 p1 p2 "
             "k3 "
             "k4 k5 k6 (not the fisheye model), or 12 or 14 if those after the eighth are 0. A point X in the ToF "
             "camera's frame has the coordinates rotation * X + translation in the aux camera's frame. translation_mm "
             "is in mm.",
             0);
}

}  // namespace itoftool
