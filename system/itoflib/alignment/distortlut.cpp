// Fills the lens table. Evaluating the lens model for every pixel of every frame would be too expensive.
#include "alignment/distortlut.h"

#include <algorithm>
#include <cmath>

#include "alignment/kernelbuild.h"
#include "alignment/mapblock.h"

namespace itof {
namespace {

/// Stores in (u, v) the pixels at which the lens shows the rays (x, y, 1). The order of the fused steps fixes the last
/// bits of the table.
ITOF_KERNEL inline void Distort(const CameraModel& lens, const double (&xs)[kMapBlock], double y,
                                double (&u)[kMapBlock], double (&v)[kMapBlock]) {
  const auto [k1, k2, k3, k4, k5, k6, p1, p2, cx, cy, fx, fy, invFx, invFy] = lens;
  const double yy = y * y;
  for (int32_t i = 0; i < kMapBlock; ++i) {
    const double x = xs[i];
    const double xx = x * x;
    const double r2 = yy + xx;
    const double numerator = std::fma(r2, std::fma(r2, std::fma(k3, r2, k2), k1), 1.0);
    const double denominator = std::fma(r2, std::fma(r2, std::fma(k6, r2, k5), k4), 1.0);
    const double radial = numerator / denominator;
    const double xy2 = y * (x + x);
    const double distortedX = std::fma(p2, (xx + xx) + r2, std::fma(p1, xy2, x * radial));
    const double distortedY = std::fma(p2, xy2, std::fma(p1, (yy + yy) + r2, y * radial));
    u[i] = std::fma(fx, distortedX, cx);
    v[i] = std::fma(fy, distortedY, cy);
  }
}

}  // namespace

void DistortLUT(const AlignmentContext& context, float* mapX, float* mapY) {
  const int32_t width = context.params.tofWidth;
  const int32_t height = context.params.tofHeight;
  const double invIdealFx = 1.0 / context.auxRatioIntrinsics[0], idealCx = context.auxRatioIntrinsics[2];
  const double invIdealFy = 1.0 / context.auxRatioIntrinsics[4], idealCy = context.auxRatioIntrinsics[5];
  const double endU = width, endV = height;
  RunKernel([&]() ITOF_KERNEL {
    for (int32_t row = 0; row < height; ++row) {
      const double y = invIdealFy * (row - idealCy);
      for (int32_t column = 0; column < width; column += kMapBlock) {
        double x[kMapBlock], u[kMapBlock], v[kMapBlock];
        for (int32_t i = 0; i < kMapBlock; ++i) x[i] = invIdealFx * (column + i - idealCx);
        Distort(context.auxModel, x, y, u, v);
        const auto inGrid = [&](int32_t i)
                                ITOF_KERNEL { return (u[i] >= 0) & (u[i] < endU) & (v[i] >= 0) & (v[i] < endV); };
        const size_t start = static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(column);
        StorePositions(u, v, std::min(kMapBlock, width - column), inGrid, mapX + start, mapY + start);
      }
    }
  });
}

}  // namespace itof
