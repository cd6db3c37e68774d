// Models a camera with a real lens exactly, in both directions: from a point to its pixel, and from a pixel to its ray.
#ifndef ITOF_TOOL_CAMERA_LENS_H_
#define ITOF_TOOL_CAMERA_LENS_H_

#include <optional>

#include "camera/geometry.h"

namespace itoftool {

/// The rational radial model with two tangential terms: with r2 = x^2 + y^2 and R = (1 + k1 r2 + k2 r2^2 + k3 r2^3) /
/// (1 + k4 r2 + k5 r2^2 + k6 r2^3), the ideal position (x, y) on the plane z = 1 is seen at (x R + 2 p1 x y + p2 (r2 +
/// 2 x^2), y R + p1 (r2 + 2 y^2) + 2 p2 x y).
struct Lens {
  double k1, k2, k3, k4, k5, k6, p1, p2;
};

/// The distorted position of an ideal position. Both are on the plane z = 1.
Point2 Distort(const Lens& lens, Point2 ideal);

/// The ideal position of a distorted one, to rounding accuracy; nothing if Newton's method does not converge or reaches
/// a place where the lens folds the picture.
std::optional<Point2> Undistort(const Lens& lens, Point2 distorted);

/// The radius on the plane z = 1 up to which a lens model is valid: there its denominator comes near zero, or the
/// distorted radius stops growing. Infinite if the model is valid up to 89 degrees off the axis. Ignores the tangential
/// terms.
double LensReach(const Lens& lens);

/// A camera: focal lengths and principal point in pixels (integer coordinates are pixel centres), and a lens.
struct Camera {
  double fx, fy, cx, cy;
  Lens lens;
};

/// The pixel position at which the camera sees a point, given in the camera's coordinates with z > 0.
Point2 Project(const Camera& camera, const Vec3& point);

/// The ray, with z = 1 in the camera's coordinates, that the camera sees at a pixel position. Throws std::domain_error
/// if the lens has no inverse there.
Vec3 Ray(const Camera& camera, Point2 position);

}  // namespace itoftool

#endif  // ITOF_TOOL_CAMERA_LENS_H_
