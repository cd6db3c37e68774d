// A camera with a real lens, in both directions: from a point to its pixel, and back along the ray.
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

/// Where the lens puts an ideal position. Both on the plane z = 1.
Point2 Distort(const Lens& lens, Point2 ideal);

/// The inverse, to rounding accuracy; nothing if Newton's method does not converge, or finds the lens folding the
/// picture over on its way.
std::optional<Point2> Undistort(const Lens& lens, Point2 distorted);

/// How far off the axis, as a radius on the plane z = 1, a lens model holds: from there on its denominator is near zero,
/// or the distorted radius no longer grows. Infinite if it holds up to 89 degrees. Tangential terms are left out.
double LensReach(const Lens& lens);

/// A camera: focal lengths and principal point in pixels (integer coordinates are pixel centres), and a lens.
struct Camera {
  double fx, fy, cx, cy;
  Lens lens;
};

/// The pixel position at which the camera sees a point of its own frame (z > 0).
Point2 Project(const Camera& camera, const Vec3& point);

/// The ray, with z = 1, along which the camera sees what it shows at a pixel position. Throws std::domain_error where
/// the lens has no inverse.
Vec3 Ray(const Camera& camera, Point2 position);

}  // namespace itoftool

#endif  // ITOF_TOOL_CAMERA_LENS_H_
