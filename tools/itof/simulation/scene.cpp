// Intersects rays with the scene, and shades surfaces.
#include "simulation/scene.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace itoftool::simulation {
namespace {

/// The part of a ray inside a box around the origin, in units of the direction's length, and the axes of the faces
/// where it enters and leaves. The ray misses the box if it leaves before it enters.
struct Crossing {
  double enter = -std::numeric_limits<double>::infinity();
  double leave = std::numeric_limits<double>::infinity();
  int enterAxis = 0;
  int leaveAxis = 0;
};

Crossing Cross(const Vec3& origin, const Vec3& direction, const Vec3& halfSize) {
  Crossing crossing;
  for (int axis = 0; axis < 3; ++axis) {
    const double inverse = 1 / direction[axis];
    const double low = (-halfSize[axis] - origin[axis]) * inverse;
    const double high = (halfSize[axis] - origin[axis]) * inverse;
    if (std::min(low, high) > crossing.enter) {
      crossing.enter = std::min(low, high);
      crossing.enterAxis = axis;
    }
    if (std::max(low, high) < crossing.leave) {
      crossing.leave = std::max(low, high);
      crossing.leaveAxis = axis;
    }
  }
  return crossing;
}

/// The unit vector along an axis that points against `direction`.
Vec3 Facing(int axis, const Vec3& direction) {
  const double length = direction[axis] > 0 ? -1 : 1;
  return {axis == 0 ? length : 0, axis == 1 ? length : 0, axis == 2 ? length : 0};
}

/// The texture position of a point on a box's face perpendicular to `axis`.
Point2 FacePosition(int axis, const Vec3& position) {
  if (axis == 0) return {position.z, position.y};
  if (axis == 1) return {position.x, position.z};
  return {position.x, position.y};
}

/// For a ray from `from` and a sphere around the origin: a quarter of the discriminant of the equation for the
/// intersections, above 0 if the ray's line goes through the sphere.
double Discriminant(const Vec3& from, const Vec3& direction, double squaredRadius) {
  const double b = Dot(from, direction);
  return b * b - Dot(direction, direction) * (Dot(from, from) - squaredRadius);
}

std::optional<Hit> Meet(const Box& box, const Vec3& origin, const Vec3& direction) {
  const Vec3 offset = origin - box.centre;
  // Most rays miss the sphere around the box, too, and that is faster to test.
  if (Discriminant(offset, direction, Dot(box.halfSize, box.halfSize)) <= 0) return std::nullopt;
  const Mat3 back = Transposed(box.toWorld);
  const Vec3 from = back * offset;
  const Vec3 along = back * direction;
  const Crossing crossing = Cross(from, along, box.halfSize);
  if (crossing.enter <= 0 || crossing.enter > crossing.leave) return std::nullopt;
  return Hit{.distance = crossing.enter,
             .normal = box.toWorld * Facing(crossing.enterAxis, along),
             .texture = FacePosition(crossing.enterAxis, from + along * crossing.enter),
             .material = &box.material};
}

std::optional<Hit> Meet(const Sphere& sphere, const Vec3& origin, const Vec3& direction) {
  const Vec3 from = origin - sphere.centre;
  const double discriminant = Discriminant(from, direction, sphere.radius * sphere.radius);
  if (discriminant <= 0) return std::nullopt;
  const double distance = (-Dot(from, direction) - std::sqrt(discriminant)) / Dot(direction, direction);
  if (distance <= 0) return std::nullopt;
  const Vec3 local = from + direction * distance;
  // The texture runs around a tilted axis, so the curvature of its bands shows.
  return Hit{
      .distance = distance,
      .normal = local * (1 / sphere.radius),
      .texture = {0.48 * local.x + 0.8 * local.y - 0.36 * local.z, 0.64 * local.x - 0.6 * local.y - 0.48 * local.z},
      .material = &sphere.material};
}

Hit MeetRoom(const Scene& scene, const Vec3& origin, const Vec3& direction) {
  const Vec3 from = origin - scene.roomCentre;
  const Crossing crossing = Cross(from, direction, scene.roomHalfSize);
  const int axis = crossing.leaveAxis;
  return {.distance = crossing.leave,
          .normal = Facing(axis, direction),
          .texture = FacePosition(axis, from + direction * crossing.leave),
          .material = &scene.roomSides[axis][direction[axis] > 0 ? 1 : 0]};
}

bool InShadow(const Scene& scene, const Vec3& position) {
  const Vec3 toLamp = scene.lamp - position;
  const auto blocks = [&](const auto& object) {
    const auto hit = Meet(object, position, toLamp);
    return hit && hit->distance < 1;
  };
  return std::any_of(scene.boxes.begin(), scene.boxes.end(), blocks) ||
         std::any_of(scene.spheres.begin(), scene.spheres.end(), blocks);
}

Vec3 SurfaceColour(const Material& material, Point2 texture) {
  const double column = texture.x / material.size;
  const double row = texture.y / material.size;
  const auto odd = [](double value) { return std::floor(value / 2) * 2 != std::floor(value); };
  bool second = false;
  switch (material.pattern) {
    case Pattern::kPlain:
      break;
    case Pattern::kStripes:
      second = odd(column);
      break;
    case Pattern::kChecks:
      second = odd(column) != odd(row);
      break;
    case Pattern::kTiles: {
      constexpr double kJoint = 0.04;  // share of a tile
      second = column - std::floor(column) < kJoint || row - std::floor(row) < kJoint;
      break;
    }
  }
  return second ? material.secondColour : material.colour;
}

}  // namespace

Hit Trace(const Scene& scene, const Vec3& origin, const Vec3& direction) {
  Hit nearest = MeetRoom(scene, origin, direction);
  const auto consider = [&](const auto& objects) {
    for (const auto& object : objects) {
      const auto hit = Meet(object, origin, direction);
      if (hit && hit->distance < nearest.distance) nearest = *hit;
    }
  };
  consider(scene.boxes);
  consider(scene.spheres);
  return nearest;
}

Vec3 Shade(const Scene& scene, const Vec3& position, const Hit& hit) {
  const Vec3 lifted = position + hit.normal * 0.01;  // so that the surface does not shadow itself
  const Vec3 toLamp = scene.lamp - lifted;
  const double distance = Length(toLamp);
  const double lambert = std::max(0.0, Dot(toLamp, hit.normal)) / distance;
  const double ambient = 0.24 - 0.06 * hit.normal.y;  // y points down, so upward faces get a little more
  double light = ambient;
  if (lambert > 0 && !InShadow(scene, lifted)) {
    constexpr double kHalfLight = 3000;  // distance from the lamp, millimetres
    light += 1.1 * lambert / (1 + distance * distance / (kHalfLight * kHalfLight));
  }
  return SurfaceColour(*hit.material, hit.texture) * light;
}

}  // namespace itoftool::simulation
