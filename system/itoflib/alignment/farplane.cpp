// Computes far-plane positions, the part of the alignment that does not depend on depth, once per run.
#include "alignment/farplane.h"

#include <algorithm>
#include <cmath>

#include "alignment/kernelbuild.h"
#include "alignment/mapblock.h"
#include "alignment/matrixmultiply.h"

namespace itof {
namespace {

/// One fixed-point round of the inverse lens model: improves the ideal positions (x, y) of the distorted positions
/// (x0, y0), all in units of the focal length.
ITOF_KERNEL inline void UndistortRound(const CameraModel& model, const double (&x0)[kMapBlock], double y0,
                                       double* __restrict x, double* __restrict y) {
  const auto [k1, k2, k3, k4, k5, k6, p1, p2, cx, cy, fx, fy, invFx, invFy] = model;
  for (int32_t i = 0; i < kMapBlock; ++i) {
    const double r2 = x[i] * x[i] + y[i] * y[i];
    const double f = (1 + r2 * (k4 + r2 * (k5 + r2 * k6))) / (1 + r2 * (k1 + r2 * (k2 + r2 * k3)));
    const double dx = 2 * p1 * x[i] * y[i] + p2 * (r2 + 2 * (x[i] * x[i]));
    const double dy = p1 * (r2 + 2 * (y[i] * y[i])) + 2 * p2 * x[i] * y[i];
    x[i] = (x0[i] - dx) * f;
    y[i] = (y0 - dy) * f;
  }
}

/// Replaces the pixels (u, v) of one row by their ideal positions, in exactly three rounds.
ITOF_KERNEL inline void Undistort(const CameraModel& model, double (&u)[kMapBlock], double (&v)[kMapBlock]) {
  double x0[kMapBlock], x[kMapBlock], y[kMapBlock];
  const double y0 = (v[0] - model.cy) * model.invFy;
  for (int32_t i = 0; i < kMapBlock; ++i) {
    x0[i] = x[i] = (u[i] - model.cx) * model.invFx;
    y[i] = y0;
  }
  UndistortRound(model, x0, y0, x, y);
  UndistortRound(model, x0, y0, x, y);
  UndistortRound(model, x0, y0, x, y);
  for (int32_t i = 0; i < kMapBlock; ++i) {
    u[i] = model.cx + model.fx * x[i];
    v[i] = model.cy + model.fy * y[i];
  }
}

/// A row of the projection times the point (x, y, far-plane depth, 1), summed like MatrixMultiply does. The last factor
/// is 1, so a plain sum rounds like a fused step.
ITOF_KERNEL inline double RowTimesPoint(const double (&m)[4], double x, double y) {
  return std::fma(m[2], kFarPlaneDepth, std::fma(m[1], y, std::fma(m[0], x, 0.0))) + m[3];
}

/// Replaces ideal ToF positions by the positions at which the aux camera sees them at the far plane. `w` is above 0
/// where the point is in front of that camera.
ITOF_KERNEL inline void Project(const double (&k)[9], const double (&projection)[3][4], double* __restrict u,
                                double* __restrict v, double* __restrict w) {
  const double fx = k[0], cx = k[2], fy = k[4], cy = k[5];
  for (int32_t i = 0; i < kMapBlock; ++i) {
    const double x = ((u[i] - cx) * kFarPlaneDepth) / fx;
    const double y = ((v[i] - cy) * kFarPlaneDepth) / fy;
    w[i] = RowTimesPoint(projection[2], x, y);
    u[i] = RowTimesPoint(projection[0], x, y) / w[i];
    v[i] = RowTimesPoint(projection[1], x, y) / w[i];
  }
}

}  // namespace

void AlignmentFarPlane(AlignmentContext& context, float* farPlaneMapX, float* farPlaneMapY, double scaleX,
                       double scaleY) {
  const AlignmentParams& params = context.params;
  context.targetsPrepared = false;  // a new run starts, with another lens table
  const auto scale = ScaleMatrix(scaleX, scaleY);
  MatrixMultiply(context.auxRatioIntrinsics, scale.data(), params.auxIntrinsics, 3, 3, 3, 3);

  const double* r = params.rotation;
  const double* t = params.translation;
  const double auxFromTof[12] = {r[0], r[1], r[2], t[0],  //
                                 r[3], r[4], r[5], t[1],  //
                                 r[6], r[7], r[8], t[2]};
  double projection[3][4];
  MatrixMultiply(projection[0], context.auxRatioIntrinsics, auxFromTof, 3, 3, 3, 4);

  const int32_t width = params.tofWidth;
  RunKernel([&]() ITOF_KERNEL {
    for (int32_t row = 0; row < params.tofHeight; ++row) {
      for (int32_t column = 0; column < width; column += kMapBlock) {
        double u[kMapBlock], v[kMapBlock], w[kMapBlock];
        for (int32_t i = 0; i < kMapBlock; ++i) {
          u[i] = column + i;
          v[i] = row;
        }
        if (context.distortionEnabled != 0) Undistort(context.tofModel, u, v);
        Project(params.tofIntrinsics, projection, u, v, w);
        const auto inFront = [&](int32_t i) ITOF_KERNEL { return w[i] > 0; };
        const size_t start = static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(column);
        StorePositions(u, v, std::min(kMapBlock, width - column), inFront, farPlaneMapX + start, farPlaneMapY + start);
      }
    }
  });
}

}  // namespace itof
