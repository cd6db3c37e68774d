// The lens model is too dear for every pixel of every frame, so its results for all grid positions are kept in a table.
#include "alignment/distortlut.h"

#include <cmath>

namespace itof {

void DistortLUT(const AlignmentContext& context, float* mapX, float* mapY) {
  const int32_t width = context.params.tofWidth;
  const int32_t height = context.params.tofHeight;
  const double invIdealFx = 1.0 / context.auxRatioIntrinsics[0], idealCx = context.auxRatioIntrinsics[2];
  const double invIdealFy = 1.0 / context.auxRatioIntrinsics[4], idealCy = context.auxRatioIntrinsics[5];
  const auto& [k1, k2, k3, k4, k5, k6, p1, p2, cx, cy, fx, fy, invFx, invFy] = context.auxModel;

  // The order of the fused steps fixes the last bits of the table.
  for (int32_t row = 0; row < height; ++row) {
    const double y = invIdealFy * (row - idealCy);
    const double yy = y * y;
    for (int32_t column = 0; column < width; ++column) {
      const double x = invIdealFx * (column - idealCx);
      const double xx = x * x;
      const double r2 = yy + xx;
      const double numerator = std::fma(r2, std::fma(r2, std::fma(k3, r2, k2), k1), 1.0);
      const double denominator = std::fma(r2, std::fma(r2, std::fma(k6, r2, k5), k4), 1.0);
      const double radial = numerator / denominator;
      const double xy2 = y * (x + x);

      const double distortedX = std::fma(p2, (xx + xx) + r2, std::fma(p1, xy2, x * radial));
      const double u = std::fma(fx, distortedX, cx);
      if (!(u >= 0 && u < width)) continue;
      const double distortedY = std::fma(p2, xy2, std::fma(p1, (yy + yy) + r2, y * radial));
      const double v = std::fma(fy, distortedY, cy);
      if (!(v >= 0 && v < height)) continue;

      const size_t i = static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(column);
      mapX[i] = static_cast<float>(u);
      mapY[i] = static_cast<float>(v);
    }
  }
}

}  // namespace itof
