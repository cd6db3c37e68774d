// Reads the raw JSON of cameras with a time-of-flight and a colour sensor. Its matrices are in shares of the sensor's
// sides and count from the image's corner; Rt takes the device's coordinates to those of each camera, in metres.
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

constexpr char kCameras[] = "CalibrationInformation.Cameras";

bool IsRawJson(const Document& document) { return Find(document.root, kCameras) != nullptr; }

/// Returns the description of the camera with a purpose.
Document CameraFor(const Document& document, const std::string& purpose) {
  const Json* const cameras = Find(document.root, kCameras);
  Document found{document.file, nullptr};
  if (cameras->is_array()) {
    for (const Json& camera : *cameras) {
      const Document candidate{document.file, camera};
      if (!ReadText(candidate, "Purpose").ends_with(purpose)) continue;
      if (!found.root.is_null())
        Fail(document.file, std::string(kCameras) + ": two cameras have the purpose " + purpose);
      found = candidate;
    }
  }
  if (found.root.is_null()) Fail(document.file, std::string(kCameras) + ": no camera has the purpose " + purpose);
  return found;
}

StereoCamera ReadCamera(const Document& document) {
  const char* const typeKey = "Intrinsics.ModelType";
  const std::string type = ReadText(document, typeKey);
  if (!type.ends_with("BrownConrady")) {
    Fail({{}, typeKey, document.file}, Quoted(type) + " is not supported; expected BrownConrady");
  }
  StereoCamera camera;
  camera.hasModelName = true;
  camera.size = {{}, "SensorWidth+SensorHeight", document.file};
  camera.size.values = ReadKey(document, camera.size, QuantityKind::kSize);
  if (camera.size.values.empty()) Fail(camera.size, "is missing");
  const double width = camera.size.values[0], height = camera.size.values[1];

  // cx, cy, fx, fy, k1 to k6, the centre of distortion, p2, p1.
  camera.matrix = camera.distortion = ReadList(document, "Intrinsics.ModelParameters", 14);
  const std::vector<double> p = camera.matrix.values;
  if (p[10] != 0 || p[11] != 0)
    Fail(camera.matrix, "has a centre of distortion, which the calibration file cannot hold");
  camera.matrix.values = {p[2] * width, 0, p[0] * width - 0.5, 0, p[3] * height, p[1] * height - 0.5, 0, 0, 1};
  camera.distortion.values = {p[4], p[5], p[13], p[12], p[6], p[7], p[8], p[9]};
  return camera;
}

cv::Matx44d ReadRt(const Document& document) {
  const Quantity rotation = ReadList(document, "Rt.Rotation", 9);
  const std::vector<double> r = RotationMatrix(rotation, rotation.values);
  const std::vector<double> t = ReadList(document, "Rt.Translation", 3).values;
  return {r[0], r[1], r[2], t[0], r[3], r[4], r[5], t[1], r[6], r[7], r[8], t[2], 0, 0, 0, 1};
}

StereoPair Read(const Documents& documents) {
  const Document& document = OnlyDocument(documents);
  const Document tof = CameraFor(document, "Depth"), aux = CameraFor(document, "PhotoVideo");
  StereoPair pair;
  pair.tof = ReadCamera(tof);
  pair.aux = ReadCamera(aux);
  SetPose(ReadRt(tof), ReadRt(aux), {{}, "Rt", document.file}, pair);
  pair.unit = std::string("m");  // GCC 12 warns wrongly about a plain "m"
  return pair;
}

}  // namespace

const StereoFormat kRawJsonFormat{
    "raw-json", "raw JSON of a time-of-flight/colour camera (CalibrationInformation), in metres",
    [](const Documents& documents) { return std::ranges::any_of(documents, IsRawJson); }, Read};

}  // namespace itoftool
