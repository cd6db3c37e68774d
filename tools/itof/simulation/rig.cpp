// Makes the simulated camera pairs. The cameras are read back from the record, so the true depth includes the rounding
// to the file's single precision.
#include "simulation/rig.h"

#include <algorithm>
#include <array>

namespace itoftool::simulation {
namespace {

/// One camera as calibrated, on pictures of width x height pixels.
struct CalibratedCamera {
  double width, height, fx, fy, cx, cy;
  Lens lens;
};

void StoreMatrix(const std::array<double, 9>& matrix, float (&target)[9]) {
  std::transform(matrix.begin(), matrix.end(), target, [](double value) { return static_cast<float>(value); });
}

void StoreCamera(const CalibratedCamera& camera, float& width, float& height, float (&intrinsics)[9],
                 float (&distortion)[8]) {
  width = static_cast<float>(camera.width);
  height = static_cast<float>(camera.height);
  StoreMatrix({camera.fx, 0, camera.cx, 0, camera.fy, camera.cy, 0, 0, 1}, intrinsics);
  const auto& [k1, k2, k3, k4, k5, k6, p1, p2] = camera.lens;
  const double fileOrder[] = {k1, k2, p1, p2, k3, k4, k5, k6};
  std::transform(std::begin(fileOrder), std::end(fileOrder), distortion,
                 [](double value) { return static_cast<float>(value); });
}

/// Scales a camera to 640 x 360. Resizing a picture by s keeps its edges, half a pixel outside the centres of the
/// outermost pixels, so position p goes to s (p + 1/2) - 1/2.
Camera WorkingCamera(float width, float height, const float (&intrinsics)[9], const float (&distortion)[8]) {
  const double sx = kWidth / static_cast<double>(width);
  const double sy = kHeight / static_cast<double>(height);
  const auto entry = [&](int index) { return static_cast<double>(intrinsics[index]); };
  const auto coefficient = [&](int index) { return static_cast<double>(distortion[index]); };
  return {.fx = sx * entry(0),
          .fy = sy * entry(4),
          .cx = sx * (entry(2) + 0.5) - 0.5,
          .cy = sy * (entry(5) + 0.5) - 0.5,
          .lens = {.k1 = coefficient(0),
                   .k2 = coefficient(1),
                   .k3 = coefficient(4),
                   .k4 = coefficient(5),
                   .k5 = coefficient(6),
                   .k6 = coefficient(7),
                   .p1 = coefficient(2),
                   .p2 = coefficient(3)}};
}

Rig MakeRig(const CalibratedCamera& tof, const CalibratedCamera& aux, const Mat3& rotation, const Vec3& translation) {
  Rig rig{};
  itof::CalibrationRecord& record = rig.record;
  StoreCamera(tof, record.tofCalibWidth, record.tofCalibHeight, record.tofIntrinsics, record.tofDistortion);
  StoreCamera(aux, record.auxCalibWidth, record.auxCalibHeight, record.auxIntrinsics, record.auxDistortion);
  for (int i = 0; i < 9; ++i) {
    record.rotation[i] = static_cast<float>(rotation.m[i]);
    rig.rotation.m[i] = static_cast<double>(record.rotation[i]);
  }
  for (int i = 0; i < 3; ++i) record.translation[i] = static_cast<float>(translation[i]);
  rig.translation = {static_cast<double>(record.translation[0]), static_cast<double>(record.translation[1]),
                     static_cast<double>(record.translation[2])};
  record.aux_fl_ratio = 1.0F;
  rig.tof = WorkingCamera(record.tofCalibWidth, record.tofCalibHeight, record.tofIntrinsics, record.tofDistortion);
  rig.aux = WorkingCamera(record.auxCalibWidth, record.auxCalibHeight, record.auxIntrinsics, record.auxDistortion);
  return rig;
}

}  // namespace

// Both ToF cameras are calibrated at 640 x 480 with pixels wider than high, and both aux cameras at full HD, so both
// matrices have to be scaled, by different factors. The x and y of the translation are negative, so near points move
// toward the start of rows and columns. Where they cover far points, they come later in row-major order.
Rig GentleRig() {
  const Lens tofLens{
      .k1 = 1.85, .k2 = 0.92, .k3 = 0.11, .k4 = 1.93, .k5 = 1.04, .k6 = 0.19, .p1 = 0.0011, .p2 = -0.0007};
  const Lens auxLens{
      .k1 = 0.62, .k2 = -0.35, .k3 = 0.09, .k4 = 0.66, .k5 = -0.31, .k6 = 0.12, .p1 = -0.0006, .p2 = 0.0009};
  return MakeRig({.width = 640, .height = 480, .fx = 521.6, .fy = 696.1, .cx = 322.7, .cy = 236.4, .lens = tofLens},
                 {.width = 1920, .height = 1080, .fx = 1549.0, .fy = 1552.5, .cx = 951.3, .cy = 545.8, .lens = auxLens},
                 Rotation(0.0037, -0.0041, 0.0030), {-24.6, -4.3, 0});
}

Rig StrongRig() {
  const Lens tofLens{.k1 = 2.4, .k2 = 0.75, .k3 = 0.03, .k4 = 2.7, .k5 = 1.35, .k6 = 0.12, .p1 = -0.0012, .p2 = 0.0008};
  const Lens auxLens{
      .k1 = 0.95, .k2 = -0.22, .k3 = 0.06, .k4 = 1.14, .k5 = -0.08, .k6 = 0.1, .p1 = 0.0010, .p2 = -0.0013};
  return MakeRig({.width = 640, .height = 480, .fx = 401.5, .fy = 534.0, .cx = 313.9, .cy = 243.1, .lens = tofLens},
                 {.width = 1920, .height = 1080, .fx = 1236.0, .fy = 1233.0, .cx = 968.4, .cy = 531.7, .lens = auxLens},
                 Rotation(0.034, -0.046, 0.022), {-31.0, -8.5, 12.0});
}

}  // namespace itoftool::simulation
