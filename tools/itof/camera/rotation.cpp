// Measures angles with formulas that stay accurate for small angles.
#include "camera/rotation.h"

#include <cmath>
#include <numbers>

namespace itoftool {

double Angle(const cv::Vec3d& a, const cv::Vec3d& b) {
  return std::atan2(cv::norm(a.cross(b)), a.dot(b)) * (180 / std::numbers::pi);
}

double OrthonormalityError(const cv::Matx33d& matrix) {
  return cv::norm(matrix * matrix.t() - cv::Matx33d::eye(), cv::NORM_INF);
}

double RotationAngle(const cv::Matx33d& r) {
  // The trace alone is inaccurate for small angles, so the skew-symmetric part gives the sine.
  const double twiceSine = std::hypot(r(2, 1) - r(1, 2), r(0, 2) - r(2, 0), r(1, 0) - r(0, 1));
  return std::atan2(twiceSine, cv::trace(r) - 1) * (180 / std::numbers::pi);
}

}  // namespace itoftool
