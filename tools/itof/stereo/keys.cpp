// Lists the keys that OpenCV's samples and common programs use, and formats them for messages.
#include "stereo/keys.h"

#include <cstddef>

#include "support/text.h"

namespace itoftool {

const SpellingTable kOpenCvSpellings{
    {{QuantityKind::kSize,
      "image size",
      {"imageSize#", "image_size#", "image_size_#", "cameraResolution#", "imageWidth#+imageHeight#",
       "image_width#+image_height#", "image_width_#+image_height_#", "image_Width#+image_Height#",
       "image_Width_#+image_Height_#", "imageSize_$", "image_size_$", "image_width_$+image_height_$",
       // For both cameras.
       "imageSize", "image_size", "cameraResolution", "imageWidth+imageHeight", "image_width+image_height",
       "image_Width+image_Height"}},
     {QuantityKind::kMatrix,
      "camera matrix",
      {"M#", "K#", "cameraMatrix#", "camera_matrix#", "camera_matrix_#", "M_$", "K_$", "cameraMatrix_$",
       "camera_matrix_$", "$_camera_matrix", "$.camera_matrix", "cameraMatrix%", "M%", "K%"}},
     {QuantityKind::kDistortion,
      "distortion",
      {"D#", "distCoeffs#", "dist_coeffs#", "dist_coeffs_#", "distortion_coefficients#", "distortion_coefficients_#",
       "D_$", "distCoeffs_$", "dist_coeffs_$", "distortion_coeffs_$", "distortion_coefficients_$", "$_dist_coeffs",
       "$_distortion_coefficients", "$.dist_coeffs", "$.distortion_coefficients", "distCoeffs%", "D%"}},
     {QuantityKind::kRotation,
      "rotation",
      {"R", "R12", "rotation", "rotation_matrix", "rotation.x+rotation.y+rotation.z+rotation.w",
       "transform.rotation.x+transform.rotation.y+transform.rotation.z+transform.rotation.w"}},
     {QuantityKind::kTranslation,
      "translation",
      {"T", "T12", "translation", "translation_vector", kMillimetreKey, "translation.x+translation.y+translation.z",
       "transform.translation.x+transform.translation.y+transform.translation.z"}},
     {QuantityKind::kRatio, "aux_fl_ratio", {"aux_fl_ratio"}}}};

const SpellingTable kNamedValueSpellings{
    {{QuantityKind::kSize, "image size", {"@.width+@.height"}},
     {QuantityKind::kMatrix, "camera matrix", {"@.fx+@.fy+@.cx+@.cy"}},
     {QuantityKind::kDistortion, "distortion", {"@.k1+@.k2+@.p1+@.p2+@.k3+@.k4+@.k5+@.k6"}},
     kOpenCvSpellings[3],
     kOpenCvSpellings[4],
     kOpenCvSpellings[5]}};

const std::vector<Spellings> kOneCameraSpellings{
    {QuantityKind::kSize,
     "image size",
     {"imageSize", "image_size", "cameraResolution", "resolution", "imageWidth+imageHeight", "image_width+image_height",
      "image_Width+image_Height", "width+height"}},
    {QuantityKind::kMatrix, "camera matrix", {"camera_matrix", "cameraMatrix", "K", "k", "M", "mtx"}},
    {QuantityKind::kDistortion,
     "distortion",
     {"distortion_coefficients", "distortionCoefficients", "distortion_coeffs", "dist_coeffs", "distCoeffs", "D", "d",
      "dist"}},
};

std::string KeyOf(const std::string& pattern, int camera) {
  const bool isFirst = camera == 1;
  std::string key;
  for (const char c : pattern) {
    switch (c) {
      case '#':
        key += isFirst ? "1" : "2";
        break;
      case '@':
        key += isFirst ? "depth" : "color";
        break;
      case '$':
        key += isFirst ? "left" : "right";
        break;
      case '%':
        key += isFirst ? "L" : "R";
        break;
      default:
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
      "Keys of opencv (# is 1 for the ToF camera, 2 for the aux camera; $ is left or right, % is L or R; a size "
      "without "
      "them holds for both; keys joined by + hold one number each):",
      0);
  for (const Spellings& spellings : kOpenCvSpellings) {
    text += std::string("  ") + spellings.name + "\n" + Wrap(Joined({spellings.keys.begin(), spellings.keys.end()}), 4);
  }
  text += "Keys of a file with one camera:\n";
  for (const Spellings& spellings : kOneCameraSpellings) {
    text += std::string("  ") + spellings.name + "\n" + Wrap(Joined({spellings.keys.begin(), spellings.keys.end()}), 4);
  }
  return text +
         Wrap(
             "A matrix is in OpenCV's form, a list of rows, or a list of all numbers; a rotation may also be a "
             "rotation "
             "vector of 3 numbers in radians. A distortion has 4, 5 or 8 coefficients in OpenCV's order, k1 k2 p1 p2 "
             "k3 "
             "k4 k5 k6 (not a fisheye model), or 12 or 14 if those after the eighth are 0. A point X in the ToF "
             "camera's "
             "frame has the coordinates rotation * X + translation in the aux camera's frame. translation_mm is in mm.",
             0);
}

}  // namespace itoftool
