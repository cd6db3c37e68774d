// Defines the readings of rotation and translation.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <string>
#include <tuple>

#include "check/readings.h"

namespace itoftool {
namespace {

using itof::CalibrationRecord;

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

/// Reads a rotation that was made from a vector in degrees as if it were in radians. `turns` are the whole turns that the
/// matrix cannot hold.
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

}  // namespace

void AddPoseReadings(std::vector<Reading>& readings) {
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
  // Up to 81 degrees.
  for (const int turns : {0, -1, 1, -2, 2, -3, 3, -4, 4}) {
    // Weak, because it turns any rotation into a small one.
    add(
        "the rotation vector in degrees", "rotation vector in degrees",
        [turns](const Pose& pose) { return FromDegrees(pose, turns); }, true);
  }
}

}  // namespace itoftool
