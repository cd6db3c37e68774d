// Reads Kalibr's camera chains. cam0 is the ToF camera; T_cn_cnm1 takes its coordinates to those of cam1, in metres.
#include <algorithm>
#include <opencv2/core.hpp>
#include <string>

#include "stereo/format.h"
#include "stereo/numbers.h"
#include "stereo/quantities.h"
#include "support/errors.h"
#include "support/text.h"

namespace itoftool {
namespace {

bool IsChain(const Document& document) { return Find(document.root, "cam0.intrinsics") != nullptr; }

/// `name` ends in a dot.
StereoCamera ReadCamera(const Document& document, const std::string& name) {
  const auto place = [&](const char* key) { return Quantity{{}, name + key, document.file}; };
  if (const std::string model = ReadText(document, place("camera_model").key); !model.empty() && model != "pinhole") {
    Fail(place("camera_model"), Quoted(model) + " is not supported; expected pinhole");
  }
  StereoCamera camera;
  camera.hasModelName = true;
  camera.matrix = ReadList(document, place("intrinsics").key, 4);
  const std::vector<double>& m = camera.matrix.values;
  camera.matrix.values = {m[0], 0, m[2], 0, m[1], m[3], 0, 0, 1};
  camera.size = place("resolution");
  camera.size.values = ReadKey(document, camera.size, QuantityKind::kSize);

  const std::string model = ReadText(document, place("distortion_model").key);
  if (model == "radtan") {
    camera.distortion = ReadList(document, place("distortion_coeffs").key, 4);
  } else if (model == "none") {
    camera.distortion = place("distortion_model");
    camera.distortion.values.resize(kFileCoefficients);
  } else {
    Fail(place("distortion_model"),
         model.empty() ? "is missing" : Quoted(model) + " is not supported; expected radtan or none");
  }
  return camera;
}

StereoPair Read(const Documents& documents) {
  const Document& document = OnlyDocument(documents);
  if (Find(document.root, "cam2") != nullptr) Fail(document.file, "cam2: the chain has more than two cameras");
  StereoPair pair;
  pair.tof = ReadCamera(document, "cam0.");
  pair.aux = ReadCamera(document, "cam1.");
  const char *const chain = "cam1.T_cn_cnm1", *const tofImu = "cam0.T_cam_imu", *const auxImu = "cam1.T_cam_imu";
  if (Find(document.root, chain) != nullptr) {
    SetPose(cv::Matx44d::eye(), ReadTransform(document, chain), {{}, chain, document.file}, pair);
  } else if (Find(document.root, auxImu) != nullptr) {
    SetPose(ReadTransform(document, tofImu), ReadTransform(document, auxImu), {{}, auxImu, document.file}, pair);
  } else {
    return pair;
  }
  pair.unit = std::string("m");  // GCC 12 warns wrongly about a plain "m"
  return pair;
}

}  // namespace

const StereoFormat kKalibrFormat{
    "kalibr", "camera chain of Kalibr (cam0 is the ToF camera, cam1 the aux camera), in metres",
    [](const Documents& documents) { return std::ranges::any_of(documents, IsChain); }, Read};

}  // namespace itoftool
