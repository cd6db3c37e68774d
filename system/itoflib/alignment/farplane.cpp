// Far-plane positions are the part of the alignment that does not depend on depth, so they are computed once a run.
#include "alignment/farplane.h"

#include "alignment/matrixmultiply.h"

namespace itof {
namespace {

struct Position {
  double u, v;
};

/// The ideal position of a pixel at (u, v), by exactly three rounds.
Position Undistort(const CameraModel& model, double u, double v) {
  const auto& [k1, k2, k3, k4, k5, k6, p1, p2, cx, cy, fx, fy, invFx, invFy] = model;
  const double x0 = (u - cx) * invFx;
  const double y0 = (v - cy) * invFy;
  double x = x0;
  double y = y0;
  for (int round = 0; round < 3; ++round) {
    const double r2 = x * x + y * y;
    const double f = (1 + r2 * (k4 + r2 * (k5 + r2 * k6))) / (1 + r2 * (k1 + r2 * (k2 + r2 * k3)));
    const double dx = 2 * p1 * x * y + p2 * (r2 + 2 * (x * x));
    const double dy = p1 * (r2 + 2 * (y * y)) + 2 * p2 * x * y;
    x = (x0 - dx) * f;
    y = (y0 - dy) * f;
  }
  return {cx + fx * x, cy + fy * y};
}

}  // namespace

void AlignmentFarPlane(AlignmentContext& context, float* farPlaneMapX, float* farPlaneMapY, double scaleX,
                       double scaleY) {
  const AlignmentParams& params = context.params;
  const auto scale = ScaleMatrix(scaleX, scaleY);
  MatrixMultiply(context.auxRatioIntrinsics, scale.data(), params.auxIntrinsics, 3, 3, 3, 3);

  const double* r = params.rotation;
  const double* t = params.translation;
  const double auxFromTof[12] = {r[0], r[1], r[2], t[0],  //
                                 r[3], r[4], r[5], t[1],  //
                                 r[6], r[7], r[8], t[2]};
  double projection[12];
  MatrixMultiply(projection, context.auxRatioIntrinsics, auxFromTof, 3, 3, 3, 4);

  const double fx = params.tofIntrinsics[0], cx = params.tofIntrinsics[2];
  const double fy = params.tofIntrinsics[4], cy = params.tofIntrinsics[5];
  for (int32_t row = 0; row < params.tofHeight; ++row) {
    for (int32_t column = 0; column < params.tofWidth; ++column) {
      Position pixel{static_cast<double>(column), static_cast<double>(row)};
      if (context.distortionEnabled != 0) pixel = Undistort(context.tofModel, pixel.u, pixel.v);

      const double point[4] = {((pixel.u - cx) * kFarPlaneDepth) / fx, ((pixel.v - cy) * kFarPlaneDepth) / fy,
                               kFarPlaneDepth, 1.0};
      double image[3];
      MatrixMultiply(image, projection, point, 3, 4, 4, 1);

      const auto& [a, b, w] = image;
      if (!(w > 0)) continue;  // behind the aux camera, or not a number
      const size_t i = static_cast<size_t>(row) * static_cast<size_t>(params.tofWidth) + static_cast<size_t>(column);
      farPlaneMapX[i] = static_cast<float>(a / w);
      farPlaneMapY[i] = static_cast<float>(b / w);
    }
  }
}

}  // namespace itof
