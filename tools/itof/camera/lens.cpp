// Evaluates the lens model, and inverts it by Newton's method. The alignment inverts it by a few fixed-point rounds; a
// check that did the same would share their error and miss it.
#include "camera/lens.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <stdexcept>
#include <string>
#include <vector>

namespace itoftool {
namespace {

/// A distorted position, and its derivatives with respect to the ideal one. Their matrix is symmetric.
struct Distortion {
  Point2 position;
  double xx, xy, yy;
};

Distortion Evaluate(const Lens& lens, Point2 ideal) {
  const auto& [k1, k2, k3, k4, k5, k6, p1, p2] = lens;
  const auto [x, y] = ideal;
  const double r2 = x * x + y * y;
  const double numerator = 1 + r2 * (k1 + r2 * (k2 + r2 * k3));
  const double denominator = 1 + r2 * (k4 + r2 * (k5 + r2 * k6));
  const double radial = numerator / denominator;
  const double slope =  // of the radial factor, with respect to r2
      (k1 + r2 * (2 * k2 + r2 * 3 * k3) - radial * (k4 + r2 * (2 * k5 + r2 * 3 * k6))) / denominator;
  return {.position = {x * radial + 2 * p1 * x * y + p2 * (r2 + 2 * x * x),
                       y * radial + p1 * (r2 + 2 * y * y) + 2 * p2 * x * y},
          .xx = radial + 2 * x * x * slope + 2 * p1 * y + 6 * p2 * x,
          .xy = 2 * x * y * slope + 2 * p1 * x + 2 * p2 * y,
          .yy = radial + 2 * y * y * slope + 6 * p1 * y + 2 * p2 * x};
}

/// True if the radial model is valid at a radius: the denominator is well above zero, and the distorted radius grows.
bool IsValidAt(const Lens& lens, double radius) {
  constexpr double kNearZero = 0.01;
  const double r2 = radius * radius;
  const double numerator = 1 + r2 * (lens.k1 + r2 * (lens.k2 + r2 * lens.k3));
  const double denominator = 1 + r2 * (lens.k4 + r2 * (lens.k5 + r2 * lens.k6));
  const double numeratorSlope = lens.k1 + r2 * (2 * lens.k2 + r2 * 3 * lens.k3);  // with respect to r2
  const double denominatorSlope = lens.k4 + r2 * (2 * lens.k5 + r2 * 3 * lens.k6);
  // The derivative of r * numerator / denominator, times the square of the denominator.
  const double growth =
      numerator * denominator + 2 * r2 * (numeratorSlope * denominator - numerator * denominatorSlope);
  return denominator > kNearZero && growth > 0;
}

/// Radii on the plane z = 1 from 0 to 89 degrees off the axis, a hundredth of a degree apart. The model is valid at the
/// first. Tangents take longer than the models that are tried at them, so they are computed once.
const std::vector<double>& SampledRadii() {
  static const std::vector<double> radii = [] {
    std::vector<double> tangents;
    for (int step = 0; step <= 8900; ++step) tangents.push_back(std::tan(step * (std::numbers::pi / 180 / 100)));
    return tangents;
  }();
  return radii;
}

}  // namespace

Point2 Distort(const Lens& lens, Point2 ideal) { return Evaluate(lens, ideal).position; }

std::optional<Point2> Undistort(const Lens& lens, Point2 distorted) {
  constexpr int kMostRounds = 50;
  constexpr double kConverged = 1e-13;
  Point2 ideal = distorted;
  for (int round = 0; round < kMostRounds; ++round) {
    const auto [position, xx, xy, yy] = Evaluate(lens, ideal);
    const double determinant = xx * yy - xy * xy;
    if (!(determinant > 0)) return std::nullopt;
    const double missX = distorted.x - position.x;
    const double missY = distorted.y - position.y;
    const double stepX = (yy * missX - xy * missY) / determinant;
    const double stepY = (xx * missY - xy * missX) / determinant;
    ideal = {ideal.x + stepX, ideal.y + stepY};
    if (std::abs(stepX) <= kConverged && std::abs(stepY) <= kConverged) return ideal;
  }
  return std::nullopt;
}

double LensReach(const Lens& lens) {
  const std::vector<double>& radii = SampledRadii();
  const auto invalid = std::ranges::find_if_not(radii, [&](double radius) { return IsValidAt(lens, radius); });
  if (invalid == radii.end()) return std::numeric_limits<double>::infinity();
  double low = invalid[-1], high = invalid[0];
  for (int round = 0; round < 40; ++round) {
    const double middle = (low + high) / 2;
    (IsValidAt(lens, middle) ? low : high) = middle;
  }
  return low;
}

Point2 Project(const Camera& camera, const Vec3& point) {
  const Point2 seen = Distort(camera.lens, {point.x / point.z, point.y / point.z});
  return {camera.fx * seen.x + camera.cx, camera.fy * seen.y + camera.cy};
}

Vec3 Ray(const Camera& camera, Point2 position) {
  const auto ideal =
      Undistort(camera.lens, {(position.x - camera.cx) / camera.fx, (position.y - camera.cy) / camera.fy});
  if (!ideal) {
    throw std::domain_error("the lens has no inverse at pixel (" + std::to_string(position.x) + ", " +
                            std::to_string(position.y) + ")");
  }
  return {ideal->x, ideal->y, 1};
}

}  // namespace itoftool
