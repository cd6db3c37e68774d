// Reads ROS camera_info: a file per camera, in the form of camera_calibration or of a printed message. The pose is in a
// third file, in metres, or on the command line.
#include <algorithm>
#include <string>

#include "stereo/format.h"
#include "stereo/numbers.h"
#include "stereo/quantities.h"
#include "support/errors.h"
#include "support/text.h"

namespace itoftool {
namespace {

bool IsCameraInfo(const Document& document) {
  return HasOneCamera(document) && Find(document.root, "distortion_model") != nullptr;
}

StereoPair Read(const Documents& documents) {
  StereoPair pair = ReadFilePerCamera(documents);
  for (const Document& document : documents) {
    if (!HasOneCamera(document)) continue;
    StereoCamera& camera = document.file == pair.tof.matrix.file ? pair.tof : pair.aux;
    const std::string model = ReadText(document, "distortion_model");
    const size_t count = camera.distortion.values.size();
    const Quantity place{{}, "distortion_model", document.file};
    if (model == "plumb_bob" ? count > 5 : model != "rational_polynomial") {
      Fail(place, model == "plumb_bob"
                      ? "plumb_bob has at most 5 coefficients, the file has " + std::to_string(count)
                      : Quoted(model) + " is not supported; expected plumb_bob or rational_polynomial");
    }
    camera.hasModelName = true;
  }
  if (pair.unit.empty() && !pair.translation.values.empty())
    pair.unit = std::string("m");  // GCC 12 warns wrongly about a plain "m"
  return pair;
}

}  // namespace

const StereoFormat kRosFormat{
    "ros", "camera_info of ROS, a file per camera, the ToF camera's first, and a file with the pose in metres",
    [](const Documents& documents) { return std::ranges::any_of(documents, IsCameraInfo); }, Read};

}  // namespace itoftool
