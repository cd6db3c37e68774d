// Angles between rays and of rotations, and whether a matrix is a rotation.
#ifndef ITOF_TOOL_CAMERA_ROTATION_H_
#define ITOF_TOOL_CAMERA_ROTATION_H_

#include <opencv2/core.hpp>

namespace itoftool {

/// Degrees between two rays.
double Angle(const cv::Vec3d& a, const cv::Vec3d& b);

/// How far a matrix is from a rotation or a mirror: the largest entry of R times its transpose less the identity.
double OrthonormalityError(const cv::Matx33d& matrix);
inline constexpr double kOrthonormal = 1e-3;  // up to this error it counts as one

/// The angle in degrees by which a rotation turns, 0 to 180.
double RotationAngle(const cv::Matx33d& rotation);

}  // namespace itoftool

#endif  // ITOF_TOOL_CAMERA_ROTATION_H_
