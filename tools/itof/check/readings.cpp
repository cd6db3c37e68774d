// Defines each reading as a change of the record.
#include "check/readings.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <numbers>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <tuple>
#include <utility>

#include "camera/imagepart.h"
#include "check/camerafields.h"

namespace itoftool {
namespace {

using itof::CalibrationRecord;
using WhichCamera::kAux, WhichCamera::kTof;

std::string CameraName(WhichCamera which) { return which == kTof ? "ToF" : "aux"; }
ReadingPart PartOf(WhichCamera which) { return which == kTof ? ReadingPart::kTof : ReadingPart::kAux; }

// Cameras

void TakeImagePart(CalibrationRecord& record, WhichCamera which, const ImagePart& part) {
  CameraFields camera = ReadCamera(record, which);
  TakePart(camera.matrix, part, camera.width, camera.height);
  record = WithCamera(record, camera);
}

/// The common image height next to `height`, or `height` if none is near.
double CommonHeight(double height) {
  constexpr double kNear = 0.03;
  constexpr double kCommon[] = {240, 288, 360, 400, 424, 480,  512,  540,  576, 600,
                                640, 720, 768, 800, 960, 1080, 1200, 1440, 2160};
  const auto distance = [&](double each) { return std::abs(each / height - 1); };
  const double common = *std::ranges::min_element(kCommon, {}, distance);
  return distance(common) < kNear ? common : height;
}

/// Reads the matrix as that of an image of another size and the same shape. Its columns are centred on the principal
/// point; its rows may be cut.
bool ResizeMatrix(CalibrationRecord& record, WhichCamera which) {
  constexpr double kSameSize = 0.1;
  const CameraFields camera = ReadCamera(record, which);
  const double size = (2 * camera.Cx() + 1) / camera.width;
  if (!(size > 0) || std::abs(size - 1) < kSameSize) return false;
  const double factor = CommonHeight(size * camera.height) / camera.height;
  TakeImagePart(record, which, {0, 0, camera.width * factor, camera.height * factor});
  return true;
}

/// Reads the matrix as that of the 4:3 image whose middle rows are the calibration image.
bool CutRows(CalibrationRecord& record, WhichCamera which) {
  const CameraFields camera = ReadCamera(record, which);
  const double rows = camera.width * 3 / 4;
  if (rows <= camera.height) return false;
  TakeImagePart(record, which, {0, (rows - camera.height) / 2, camera.width, camera.height});
  return true;
}

/// Changes one camera's matrix or lens.
template <typename Change>
auto OfCamera(WhichCamera which, const Change& change) {
  return [which, change](CalibrationRecord& record) {
    CameraFields camera = ReadCamera(record, which);
    change(camera);
    record = WithCamera(record, camera);
    return true;
  };
}

/// Moves p1 and p2 from after the first `radial` coefficients to their place in the file.
template <size_t radial>
void ReorderLens(CameraFields& camera) {
  std::rotate(camera.lens + 2, camera.lens + radial, camera.lens + radial + 2);
}

bool ExchangeMatrices(CalibrationRecord& record) {
  std::ranges::swap(record.tofIntrinsics, record.auxIntrinsics);
  return true;
}

bool ExchangeLenses(CalibrationRecord& record) {
  std::ranges::swap(record.tofDistortion, record.auxDistortion);
  return true;
}

/// Fails unless both images have the width that the library requires of the ToF image.
bool ExchangeCameras(CalibrationRecord& record) {
  if (std::trunc(record.tofCalibWidth) != std::trunc(record.auxCalibWidth)) return false;
  std::swap(record.tofCalibHeight, record.auxCalibHeight);
  return ExchangeMatrices(record) && ExchangeLenses(record);
}

void AddCameraReadings(std::vector<Reading>& readings) {
  const auto add = [&](std::string name, const char* group, ReadingPart part, auto apply, bool isWeak = false) {
    readings.push_back({std::move(name), group, part, isWeak, false, std::move(apply)});
  };
  add("the camera matrices exchanged", "matrices exchanged", ReadingPart::kBothCameras, ExchangeMatrices);
  for (const WhichCamera which : {kTof, kAux}) {
    const std::string matrix = "the " + CameraName(which) + " matrix ",
                      focal = "the " + CameraName(which) + " fx and fy ";
    const ReadingPart part = PartOf(which);
    add(matrix + "for an image of another size", "matrices for another image size", part,
        [which](CalibrationRecord& record) { return ResizeMatrix(record, which); });
    for (const auto& [factor, size] : {std::pair(0.5, "half the size"), std::pair(2.0, "twice the size")}) {
      // Fields of view that differ are common among sound pairs, too.
      add(focal + "for an image of " + size, "focal lengths for another image size", part,
          OfCamera(which,
                   [factor = factor](CameraFields& camera) {
                     for (const int i : {0, 4}) camera.matrix[i] /= factor;
                   }),
          true);
    }
    add(
        matrix + "for the 4:3 image of which the frame is the middle", "matrices for a 4:3 image", part,
        [which](CalibrationRecord& record) { return CutRows(record, which); }, true);
    add("cx and cy of the " + CameraName(which) + " matrix exchanged", "cx and cy exchanged", part,
        OfCamera(which, [](CameraFields& camera) { std::swap(camera.matrix[2], camera.matrix[5]); }));
    add("fx and fy of the " + CameraName(which) + " matrix exchanged", "fx and fy exchanged", part,
        OfCamera(which, [](CameraFields& camera) { std::swap(camera.matrix[0], camera.matrix[4]); }));
  }
  struct Order {
    const char* name;
    void (*reorder)(CameraFields& camera);
  };
  for (const auto& [order, reorder] :
       {Order{"k1 k2 k3 p1 p2", ReorderLens<3>}, Order{"k1 k2 k3 k4 k5 k6 p1 p2", ReorderLens<6>}}) {
    const char* group = "coefficients in another order";
    add(std::string("both lenses in the order ") + order, group, ReadingPart::kBothCameras,
        [reorder = reorder](CalibrationRecord& record) {
          return OfCamera(kTof, reorder)(record) && OfCamera(kAux, reorder)(record);
        });
    for (const WhichCamera which : {kTof, kAux}) {
      add("the " + CameraName(which) + " lens in the order " + order, group, PartOf(which), OfCamera(which, reorder));
    }
  }
  for (const WhichCamera which : {kTof, kAux}) {
    add("p1 and p2 of the " + CameraName(which) + " lens exchanged", "p1 and p2 exchanged", PartOf(which),
        OfCamera(which, [](CameraFields& camera) { std::swap(camera.lens[2], camera.lens[3]); }));
  }
  add("the lenses exchanged", "lenses exchanged", ReadingPart::kBothCameras, ExchangeLenses);
  add("the cameras exchanged", "cameras exchanged", ReadingPart::kBothCameras, ExchangeCameras);
}

// Extrinsics

struct Pose {
  cv::Matx33d rotation;
  cv::Vec3d translation;
};

Pose PoseOf(const CalibrationRecord& record) {
  const cv::Matx33f rotation(record.rotation);
  const cv::Vec3f translation(record.translation);
  return {rotation, translation};
}

void SetPose(CalibrationRecord& record, const Pose& pose) {
  std::ranges::transform(pose.rotation.val, record.rotation, [](double value) { return static_cast<float>(value); });
  std::ranges::transform(pose.translation.val, record.translation,
                         [](double value) { return static_cast<float>(value); });
}

/// Makes a reading of one that takes a pose and returns the pose that is meant.
template <typename Change>
auto OfPose(const Change& change) {
  return [change](CalibrationRecord& record) {
    SetPose(record, change(PoseOf(record)));
    return true;
  };
}

Pose Inverted(const Pose& pose) { return {pose.rotation.t(), -(pose.rotation.t() * pose.translation)}; }

/// The quaternion of a rotation: x, y, z, w. Its sign is arbitrary.
cv::Vec4d QuaternionOf(const cv::Matx33d& rotation) {
  cv::Vec3d vector;
  cv::Rodrigues(rotation, vector);
  const double angle = cv::norm(vector), scale = angle > 0 ? std::sin(angle / 2) / angle : 0.5;
  return {vector[0] * scale, vector[1] * scale, vector[2] * scale, std::cos(angle / 2)};
}

cv::Matx33d RotationOf(const cv::Vec4d& quaternion) {
  const cv::Vec3d axis(quaternion[0], quaternion[1], quaternion[2]);
  const double sine = cv::norm(axis), angle = 2 * std::atan2(sine, quaternion[3]);
  cv::Matx33d rotation;
  cv::Rodrigues(sine > 0 ? axis * (angle / sine) : cv::Vec3d(), rotation);
  return rotation;
}

/// Reads a rotation that was made from a vector in degrees as if it were in radians. The written angle lacks `turns`
/// whole turns.
Pose FromDegrees(const Pose& pose, int turns) {
  cv::Vec3d vector;
  cv::Rodrigues(pose.rotation, vector);
  const double angle = cv::norm(vector);
  if (angle == 0) return pose;
  const double degrees = angle + turns * 2 * std::numbers::pi;
  Pose meant = pose;
  cv::Rodrigues(vector * (degrees * std::numbers::pi / 180 / angle), meant.rotation);
  return meant;
}

/// Applies a change of axes to the coordinates of one camera, or of both.
Pose WithAxes(const Pose& pose, const cv::Matx33d& change, bool ofTof, bool ofAux) {
  Pose meant = pose;
  if (ofAux) meant = {change * meant.rotation, change * meant.translation};
  if (ofTof) meant.rotation = meant.rotation * change.t();
  return meant;
}

void AddAxesReadings(std::vector<Reading>& readings) {
  struct Axes {
    const char* name;
    const char* group;
    cv::Matx33d change;
  };
  const auto diagonal = [](double x, double y, double z) { return cv::Matx33d(x, 0, 0, 0, y, 0, 0, 0, z); };
  const Axes axes[] = {
      {"y and z axes flipped", "axes flipped", diagonal(1, -1, -1)},
      {"picture turned by 180 degrees", "pictures turned", diagonal(-1, -1, 1)},
      {"picture turned by 90 degrees", "pictures turned", cv::Matx33d(0, -1, 0, 1, 0, 0, 0, 0, 1)},
      {"picture turned by -90 degrees", "pictures turned", cv::Matx33d(0, 1, 0, -1, 0, 0, 0, 0, 1)},
      {"x axis flipped", "axes mirrored", diagonal(-1, 1, 1)},
      {"y axis flipped", "axes mirrored", diagonal(1, -1, 1)},
      {"z axis flipped", "axes mirrored", diagonal(1, 1, -1)},
  };
  for (const auto& [owner, ofTof, ofAux] :
       {std::tuple("the aux camera's ", false, true), std::tuple("the ToF camera's ", true, false),
        std::tuple("both cameras' ", true, true)}) {
    for (const Axes& each : axes) {
      const auto change = [matrix = each.change, tof = ofTof, aux = ofAux](const Pose& pose) {
        return WithAxes(pose, matrix, tof, aux);
      };
      readings.push_back({std::string(owner) + each.name, each.group, ReadingPart::kExtrinsics, false, ofTof && ofAux,
                          OfPose(change)});
    }
  }
}

void AddExtrinsicsReadings(std::vector<Reading>& readings) {
  const auto add = [&](const char* name, const char* group, const auto& change, bool isWeak = false) {
    readings.push_back({name, group, ReadingPart::kExtrinsics, isWeak, false, OfPose(change)});
  };
  add("the rotation transposed", "rotation transposed", [](const Pose& pose) {
    return Pose{pose.rotation.t(), pose.translation};
  });
  add("the pair inverted", "pair inverted", Inverted);
  add("the translation with the opposite sign", "translation negated", [](const Pose& pose) {
    return Pose{pose.rotation, -pose.translation};
  });
  add("the translation as the position of the aux camera", "translation as a position", [](const Pose& pose) {
    return Pose{pose.rotation, -(pose.rotation * pose.translation)};
  });
  const auto addUnit = [&](const char* name, double factor) {
    add(name, "translation in another unit", [factor](const Pose& pose) {
      return Pose{pose.rotation, pose.translation * factor};
    });
  };
  addUnit("the translation in metres", 1000);
  addUnit("the translation in centimetres", 10);
  addUnit("the translation in inches", 25.4);
  addUnit("the translation in micrometres", 0.001);
  addUnit("the translation in tenths of a millimetre", 0.1);
  AddAxesReadings(readings);
  add("the quaternion in the order x y z w", "quaternion in another order", [](const Pose& pose) {
    const cv::Vec4d q = QuaternionOf(pose.rotation);
    return Pose{RotationOf({q[3], q[0], q[1], q[2]}), pose.translation};
  });
  add("the quaternion in the order w x y z", "quaternion in another order", [](const Pose& pose) {
    const cv::Vec4d q = QuaternionOf(pose.rotation);
    return Pose{RotationOf({q[1], q[2], q[3], q[0]}), pose.translation};
  });
  for (const int turns : {0, -1, 1}) {
    // Weak, because it makes a small rotation of any.
    add(
        "the rotation vector in degrees", "rotation vector in degrees",
        [turns](const Pose& pose) { return FromDegrees(pose, turns); }, true);
  }
}

std::vector<Reading> MakeReadings() {
  std::vector<Reading> readings;
  AddCameraReadings(readings);
  AddExtrinsicsReadings(readings);
  readings.push_back({"the cameras exchanged and the pair inverted", "cameras exchanged", ReadingPart::kAll, false,
                      true,
                      [](CalibrationRecord& record) { return ExchangeCameras(record) && OfPose(Inverted)(record); }});
  return readings;
}

}  // namespace

const std::vector<Reading>& Readings() {
  static const std::vector<Reading> readings = MakeReadings();
  return readings;
}

}  // namespace itoftool
