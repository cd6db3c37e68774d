// Measures the angle between rays, the angle of a rotation, and how far a matrix is from a rotation.
#ifndef ITOF_TOOL_CAMERA_ROTATION_H_
#define ITOF_TOOL_CAMERA_ROTATION_H_

#include <opencv2/core.hpp>

namespace itoftool {

/// The angle between two rays, in degrees.
double Angle(const cv::Vec3d& a, const cv::Vec3d& b);

/// How far a matrix R is from a rotation or a reflection: the largest absolute entry of R R^T - I.
double OrthonormalityError(const cv::Matx33d& matrix);
inline constexpr double kOrthonormal = 1e-3;  // up to this error a matrix counts as orthonormal

/// The angle of a rotation in degrees, 0 to 180.
double RotationAngle(const cv::Matx33d& rotation);

}  // namespace itoftool

#endif  // ITOF_TOOL_CAMERA_ROTATION_H_
