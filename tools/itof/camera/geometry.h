// Defines points, vectors and 3x3 matrices. Uses only arithmetic and square roots, because other math functions give
// different bits on different machines.
#ifndef ITOF_TOOL_CAMERA_GEOMETRY_H_
#define ITOF_TOOL_CAMERA_GEOMETRY_H_

#include <cmath>

namespace itoftool {

struct Point2 {
  double x, y;
};

struct Vec3 {
  double x, y, z;
  constexpr double operator[](int axis) const { return axis == 0 ? x : axis == 1 ? y : z; }
};

constexpr Vec3 operator+(const Vec3& a, const Vec3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
constexpr Vec3 operator-(const Vec3& a, const Vec3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
constexpr Vec3 operator*(const Vec3& a, double s) { return {a.x * s, a.y * s, a.z * s}; }
constexpr double Dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline double Length(const Vec3& a) { return std::sqrt(Dot(a, a)); }

/// 3x3, row-major.
struct Mat3 {
  double m[9];
};

constexpr Vec3 operator*(const Mat3& a, const Vec3& v) {
  const auto& m = a.m;
  return {m[0] * v.x + m[1] * v.y + m[2] * v.z, m[3] * v.x + m[4] * v.y + m[5] * v.z,
          m[6] * v.x + m[7] * v.y + m[8] * v.z};
}

constexpr Mat3 Transposed(const Mat3& a) {
  const auto& m = a.m;
  return {{m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]}};
}

constexpr Mat3 operator*(const Mat3& a, const Mat3& b) {
  const Mat3 columns = Transposed(b);
  const auto& m = columns.m;
  const Vec3 x = a * Vec3{m[0], m[1], m[2]};
  const Vec3 y = a * Vec3{m[3], m[4], m[5]};
  const Vec3 z = a * Vec3{m[6], m[7], m[8]};
  return {{x.x, y.x, z.x, x.y, y.y, z.y, x.z, y.z, z.z}};
}

/// The rotation of the quaternion (1, x, y, z), normalised: about the axis (x, y, z), by twice the arc tangent of the
/// axis's length.
inline Mat3 Rotation(double x, double y, double z) {
  const double s = 2 / (1 + x * x + y * y + z * z);
  return {{1 - s * (y * y + z * z), s * (x * y - z), s * (x * z + y),  //
           s * (x * y + z), 1 - s * (x * x + z * z), s * (y * z - x),  //
           s * (x * z - y), s * (y * z + x), 1 - s * (x * x + y * y)}};
}

}  // namespace itoftool

#endif  // ITOF_TOOL_CAMERA_GEOMETRY_H_
