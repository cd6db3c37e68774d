// Names formats and lens models that are known but cannot be imported.
#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>
#include <vector>

#include "stereo/format.h"
#include "support/errors.h"
#include "support/text.h"

namespace itoftool {
namespace {

/// A program, and keys of which every file of it has all.
struct Program {
  const char* name;
  std::vector<const char*> keys;
};
const Program kPrograms[] = {
    {"a Basalt calibration", {"value0.T_imu_cam"}},
    {"a Basalt calibration", {"value0.intrinsics"}},
    {"the calibration of an OAK camera", {"cameraData"}},
    {"the calibration of an OAK camera", {"batchData"}},
    {"a Multical calibration", {"cameras", "camera_poses"}},
    {"an OpenMVG reconstruction", {"sfm_data_version"}},
    {"an Open3D camera", {"intrinsic_matrix"}},
    {"an Open3D camera", {"intrinsic.intrinsic_matrix"}},
    {"a NeRF data set", {"frames", "camera_angle_x"}},
    {"a NeRF data set", {"frames", "fl_x"}},
};

/// Lower-case letters and digits of a text, so that "Double-Sphere" equals "double_sphere".
std::string Plain(const std::string& text) {
  std::string plain;
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (std::isalnum(code) != 0) plain += static_cast<char>(std::tolower(code));
  }
  return plain;
}

bool HasPart(const std::string& text, const std::vector<std::string_view>& parts) {
  return std::ranges::any_of(parts, [&](std::string_view part) { return text.find(part) != std::string::npos; });
}

bool IsOtherModel(const std::string& model) {
  static const std::vector<std::string_view> parts{"fisheye",      "equidist", "kannalabrandt", "omni",
                                                   "catadioptric", "eucm",     "doublesphere",  "unified",
                                                   "scaramuzza",   "ocam",     "thinprism",     "ftheta"},
      names{"equi", "kb", "kb3", "kb4", "kb8", "ds", "ucm", "fov", "atan", "mei", "division"};
  const std::string plain = Plain(model);
  return HasPart(plain, parts) || std::ranges::find(names, plain) != names.end();
}

void RefuseModelsIn(const std::string& file, const std::string& path, const Json& node) {
  if (!node.is_structured()) return;
  for (const auto& [key, value] : node.items()) {
    const std::string place = path.empty() ? key : path + "." + key;
    const bool isModel = node.is_object() && HasPart(Plain(key), {"model", "type", "projection", "lens", "distortion"});
    std::string model;
    if (isModel && value.is_string() && IsOtherModel(value)) model = value;
    // E.g. "fisheye: 1", or coefficients under "fisheye_D1".
    const bool isFalse = value.is_null() || value == false || value == 0 || value == "false" || value == "no";
    if (node.is_object() && Plain(key).find("fisheye") != std::string::npos && !isFalse) model = "fisheye";
    if (!model.empty()) {
      Fail(file,
           place + ": the lens model is \"" + model +
               "\", and the calibration file holds OpenCV's rational model only; calibrate with that, or resample "
               "the images to it");
    }
    RefuseModelsIn(file, place, value);
  }
}

}  // namespace

void RefuseUnsupportedFormat(const Documents& documents) {
  for (const Document& document : documents) {
    for (const auto& [name, keys] : kPrograms) {
      if (!std::ranges::all_of(keys, [&](const char* key) { return Find(document.root, key) != nullptr; })) continue;
      std::vector<std::string> formats;
      for (const StereoFormat* format : kStereoFormats) formats.emplace_back(format->name);
      Fail(document.file,
           std::string("recognised as ") + name + ", which is not supported; convert it to one of: " + Joined(formats));
    }
  }
}

void RefuseUnsupportedModel(const Documents& documents) {
  for (const Document& document : documents) RefuseModelsIn(document.file, {}, document.root);
}

}  // namespace itoftool
