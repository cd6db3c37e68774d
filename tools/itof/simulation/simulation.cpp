// Renders the views of the aux camera: its picture and the true depth. Rays go from the view into the scene, whereas an
// alignment projects points into the view.
#include "simulation/simulation.h"

#include <algorithm>
#include <cmath>

namespace itoftool::simulation {
namespace {

/// The first surface that the aux camera sees at a position of its picture. `position` is in world coordinates.
struct AuxSight {
  Hit hit;
  Vec3 position;
};

/// Traces rays from the aux camera through one scene.
class AuxTracer {
 public:
  AuxTracer(const Rig& rig, const Scene& scene)
      : camera_(rig.aux),
        scene_(scene),
        auxToTof_(Transposed(rig.rotation)),
        origin_(scene.cameraToWorld * (auxToTof_ * (rig.translation * -1))) {}

  AuxSight See(Point2 pixel) const {
    const Vec3 direction = scene_.cameraToWorld * (auxToTof_ * Ray(camera_, pixel));
    const Hit hit = Trace(scene_, origin_, direction);
    return {hit, origin_ + direction * hit.distance};
  }

 private:
  const Camera& camera_;
  const Scene& scene_;
  Mat3 auxToTof_;
  Vec3 origin_;
};

/// Converts a linear intensity to a byte. The square root is close to the gamma of displays.
uint8_t PictureByte(double intensity) {
  return static_cast<uint8_t>(std::lround(255 * std::sqrt(std::clamp(intensity, 0.0, 1.0))));
}

}  // namespace

std::vector<uint8_t> AuxPicture(const Rig& rig, const Scene& scene) {
  const AuxTracer tracer(rig, scene);
  std::vector<uint8_t> picture;
  picture.reserve(size_t{kWidth} * kHeight * 3);
  for (int v = 0; v < kHeight; ++v) {
    for (int u = 0; u < kWidth; ++u) {
      Vec3 sum{};
      for (const double dv : {-0.25, 0.25}) {
        for (const double du : {-0.25, 0.25}) {
          const AuxSight sight = tracer.See({u + du, v + dv});
          sum = sum + Shade(scene, sight.position, sight.hit);
        }
      }
      for (const double channel : {sum.z, sum.y, sum.x}) picture.push_back(PictureByte(channel / 4));
    }
  }
  return picture;
}

std::vector<uint16_t> Truth(const Rig& rig, const Scene& scene, double offset) {
  const AuxTracer tracer(rig, scene);
  const Mat3 worldToTof = Transposed(scene.cameraToWorld);
  std::vector<uint16_t> truth;
  truth.reserve(size_t{kWidth} * kHeight);
  for (int v = 0; v < kHeight; ++v) {
    for (int u = 0; u < kWidth; ++u) {
      const Vec3 point = worldToTof * tracer.See({u + offset, v + offset}).position;
      truth.push_back(static_cast<uint16_t>(std::clamp(point.z + 0.5, 0.0, 65535.0)));
    }
  }
  return truth;
}

}  // namespace itoftool::simulation
