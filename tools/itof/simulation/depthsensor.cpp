// Simulates the ToF camera: measures depth and light at each pixel, and models noise and failures.
#include <algorithm>
#include <cmath>
#include <random>

#include "simulation/simulation.h"

namespace itoftool::simulation {
namespace {

struct Measurement {
  double depth;  // along the axis, millimetres
  double light;  // returned: 1 from a perfectly white surface that faces the camera at 1 m
  bool saturated;
};

std::vector<Measurement> Measure(const Rig& rig, const Scene& scene) {
  std::vector<Measurement> measurements;
  measurements.reserve(size_t{kWidth} * kHeight);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const Vec3 ray = Ray(rig.tof, {static_cast<double>(x), static_cast<double>(y)});
      const Vec3 direction = scene.cameraToWorld * ray;
      const Hit hit = Trace(scene, {0, 0, 0}, direction);
      const double length = Length(direction);
      const double facing = -Dot(direction, hit.normal) / length;
      const double metres = hit.distance * length / 1000;
      double highlight = facing;  // to the 64th power; the light source is next to the lens
      for (int doubling = 0; doubling < 6; ++doubling) highlight *= highlight;
      const double light = hit.material->infrared * facing / (metres * metres);
      const double mirrored = hit.material->gloss * highlight / (metres * metres);
      // The ray has z = 1, so its length to the hit is the depth.
      measurements.push_back({hit.distance, light, light + mirrored > 1.8});
    }
  }
  return measurements;
}

/// 7 for plenty of light, and one less for each halving, down to 0.
int ConfidenceOf(double light) {
  int confidence = 7;
  for (double threshold = 0.2; confidence > 0 && light < threshold; threshold /= 2) --confidence;
  return confidence;
}

uint16_t Word(double depth, int confidence) {
  constexpr double kDeepest = 8191;
  return static_cast<uint16_t>((confidence << 13) | static_cast<int>(std::clamp(depth + 0.5, 1.0, kDeepest)));
}

/// Standard normal up to about three deviations, as a sum of twelve uniform draws. std::normal_distribution gives
/// different numbers in different standard libraries.
double Normal(std::mt19937_64& random) {
  double sum = -6;
  for (int draw = 0; draw < 3; ++draw) {
    uint64_t bits = random();
    for (int part = 0; part < 4; ++part, bits >>= 16) sum += (static_cast<double>(bits & 0xFFFF) + 0.5) / 65536;
  }
  return sum;
}

/// Returns the depth on the other side of a strong edge through the pixel, or the pixel's own depth if there is no
/// edge.
double DepthAcrossEdge(const std::vector<Measurement>& measurements, int x, int y) {
  const auto depthAt = [&](int column, int row) {
    return measurements[static_cast<size_t>(row) * kWidth + static_cast<size_t>(column)].depth;
  };
  const double own = depthAt(x, y);
  double farthest = own;
  const auto consider = [&](double other) {
    const double jump = std::abs(other - own);
    if (jump > 0.04 * own && jump > std::abs(farthest - own)) farthest = other;
  };
  if (x > 0) consider(depthAt(x - 1, y));
  if (x < kWidth - 1) consider(depthAt(x + 1, y));
  if (y > 0) consider(depthAt(x, y - 1));
  if (y < kHeight - 1) consider(depthAt(x, y + 1));
  return farthest;
}

}  // namespace

std::vector<uint16_t> ExactDepthWords(const Rig& rig, const Scene& scene) {
  std::vector<uint16_t> words;
  words.reserve(size_t{kWidth} * kHeight);
  for (const auto& [depth, light, saturated] : Measure(rig, scene)) {
    words.push_back(Word(depth, ConfidenceOf(light)));
  }
  return words;
}

std::vector<uint16_t> DepthWords(const Rig& rig, const Scene& scene, uint64_t seed) {
  constexpr double kLeastLight = 0.003;
  const std::vector<Measurement> measurements = Measure(rig, scene);
  std::mt19937_64 random(seed);
  std::vector<uint16_t> words;
  words.reserve(measurements.size());
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const auto& [depth, light, saturated] = measurements[words.size()];
      const double across = DepthAcrossEdge(measurements, x, y);
      // Drawn for every pixel, so that a change of the scene does not change the noise of other pixels.
      const double noise = Normal(random) * (0.5 + 1.2 / std::sqrt(light));
      const uint64_t edgeBits = random();
      const double share = static_cast<double>(edgeBits >> 32) / 4294967296.0;

      // The camera rejects some of the pixels that mix both sides of an edge.
      const bool mixed = across != depth && (edgeBits & 3) < 2;
      const bool rejected = mixed && (edgeBits & 3) == 1;
      if (light < kLeastLight || saturated || rejected) {
        words.push_back(0);
      } else if (!mixed) {
        words.push_back(Word(depth + noise, ConfidenceOf(light)));
      } else {
        words.push_back(Word(depth + share * (across - depth) + noise, 0));
      }
    }
  }
  return words;
}

uint64_t FrameSeed(uint64_t sequenceSeed, int frame) { return sequenceSeed * 1'000'003 + static_cast<uint64_t>(frame); }

}  // namespace itoftool::simulation
