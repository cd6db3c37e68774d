// Makes the calibrations of a series of camera pairs, each as built and measured within normal tolerances.
#ifndef ITOF_TESTS_SUPPORT_SIMULATEDFLEET_H_
#define ITOF_TESTS_SUPPORT_SIMULATEDFLEET_H_

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "camera/geometry.h"
#include "simulation/rig.h"

/// `units` calibrations around the simulated pair's. The standard deviations are 0.4 % of a focal length, 0.25 % of the
/// image's width for a principal point, 0.1 degrees about each axis, 0.1 mm along each, 0.01 for a radial coefficient and
/// 0.0002 for a tangential one.
inline std::vector<itof::CalibrationRecord> SimulatedFleet(size_t units, unsigned seed) {
  using itoftool::Mat3;
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  const auto vary = [&](float& value, double deviation) {
    value = static_cast<float>(static_cast<double>(value) + deviation * normal(random));
  };
  std::vector<itof::CalibrationRecord> fleet(units, itoftool::simulation::GentleRig().record);
  for (itof::CalibrationRecord& unit : fleet) {
    for (const auto& [matrix, width] : {std::pair{unit.tofIntrinsics, 640.0}, {unit.auxIntrinsics, 1920.0}}) {
      const auto scale = static_cast<float>(1 + 0.004 * normal(random));
      for (const int focal : {0, 4}) vary(matrix[focal] *= scale, 0.0002 * width);
      for (const int centre : {2, 5}) vary(matrix[centre], 0.0025 * width);
    }
    for (float* const lens : {unit.tofDistortion, unit.auxDistortion}) {
      for (int i = 0; i < 8; ++i) vary(lens[i], i == 2 || i == 3 ? 0.0002 : 0.01);
    }
    constexpr double kHalfAngle = 0.1 / 2 * 3.14159265358979 / 180;  // Rotation takes the tangent of half an angle
    const Mat3 turn =
        itoftool::Rotation(kHalfAngle * normal(random), kHalfAngle * normal(random), kHalfAngle * normal(random));
    Mat3 rotation;
    for (int i = 0; i < 9; ++i) rotation.m[i] = static_cast<double>(unit.rotation[i]);
    rotation = turn * rotation;
    for (int i = 0; i < 9; ++i) unit.rotation[i] = static_cast<float>(rotation.m[i]);
    for (float& translation : unit.translation) vary(translation, 0.1);
  }
  return fleet;
}

#endif  // ITOF_TESTS_SUPPORT_SIMULATEDFLEET_H_
