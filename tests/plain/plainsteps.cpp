// Defines every bit of the alignment steps, in readable form. Fused steps are std::fma; every other operation rounds
// separately, and sums and products run from left to right.
#include "plain/plainsteps.h"

#include <cmath>
#include <limits>
#include <memory>

namespace plain {
namespace {

struct Position {
  double x, y;
};

// Rounds toward zero. Values beyond the range give the nearest limit, not-a-number gives 0.
int32_t TruncateToInt32(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 2147483647.0) return std::numeric_limits<int32_t>::max();
  if (value <= -2147483648.0) return std::numeric_limits<int32_t>::min();
  return static_cast<int32_t>(value);
}

// Scales a camera matrix from its calibration image to the working frame.
void ScaleIntrinsics(double* intrinsics, double scaleX, double scaleY) {
  const double scale[9] = {scaleX, 0.0,    (scaleX - 1.0) * 0.5,  //
                           0.0,    scaleY, (scaleY - 1.0) * 0.5,  //
                           0.0,    0.0,    1.0};
  double scaled[9];
  MatrixMultiply(scaled, scale, intrinsics, 3, 3, 3, 3);
  for (int i = 0; i < 9; ++i) intrinsics[i] = scaled[i];
}

itof::CameraModel MakeModel(const double* k, const double* d) {
  return {d[0], d[1], d[4], d[5], d[6], d[7], d[2], d[3], k[2], k[5], k[0], k[4], 1.0 / k[0], 1.0 / k[4]};
}

// Inverts the rational lens model by three rounds of fixed-point iteration.
Position Undistort(const itof::CameraModel& model, Position pixel) {
  const auto& [k1, k2, k3, k4, k5, k6, p1, p2, cx, cy, fx, fy, invFx, invFy] = model;
  const double x0 = (pixel.x - cx) * invFx;
  const double y0 = (pixel.y - cy) * invFy;
  double x = x0, y = y0;
  for (int round = 0; round < 3; ++round) {
    const double r2 = x * x + y * y;
    const double f = (1.0 + r2 * (k4 + r2 * (k5 + r2 * k6))) / (1.0 + r2 * (k1 + r2 * (k2 + r2 * k3)));
    const double dx = 2.0 * p1 * x * y + p2 * (r2 + 2.0 * (x * x));
    const double dy = p1 * (r2 + 2.0 * (y * y)) + 2.0 * p2 * x * y;
    x = (x0 - dx) * f;
    y = (y0 - dy) * f;
  }
  return {cx + fx * x, cy + fy * y};
}

}  // namespace

void InitAlignmentContext(itof::AlignmentContext& context, const itof::AlignmentParams& params,
                          uint8_t distortionEnabled) {
  context.params = params;
  context.distortionEnabled = distortionEnabled;
  const bool empty = params.tofWidth < 1 || params.tofHeight < 1;
  const auto pixels = static_cast<size_t>(empty ? 0 : params.tofWidth * params.tofHeight);
  context.confidence = std::make_unique<uint8_t[]>(pixels);
  for (auto* map : {&context.farPlaneMapX, &context.farPlaneMapY, &context.distortMapX, &context.distortMapY}) {
    *map = std::make_unique<float[]>(pixels);
  }
  const auto quotient = [](int32_t a, int32_t b) { return static_cast<double>(a) / static_cast<double>(b); };
  double* tof = context.params.tofIntrinsics;
  double* aux = context.params.auxIntrinsics;
  ScaleIntrinsics(tof, quotient(params.tofWidth, params.tofCalibWidth),
                  quotient(params.tofHeight, params.tofCalibHeight));
  ScaleIntrinsics(aux, quotient(params.auxWidth, params.auxCalibWidth),
                  quotient(params.auxHeight, params.auxCalibHeight));
  context.tofModel = MakeModel(tof, params.tofDistortion);
  context.auxModel = MakeModel(aux, params.auxDistortion);
}

void MatrixMultiply(double* out, const double* a, const double* b, int32_t rows, int32_t aRowLength, int32_t inner,
                    int32_t cols) {
  for (int32_t i = 0; i < rows; ++i) {
    for (int32_t j = 0; j < cols; ++j) {
      double sum = 0.0;
      for (int32_t k = 0; k < inner; ++k) sum = std::fma(a[i * aRowLength + k], b[k * cols + j], sum);
      out[i * cols + j] = sum;
    }
  }
}

void AlignmentFarPlane(itof::AlignmentContext& context, float* farPlaneMapX, float* farPlaneMapY, double scaleX,
                       double scaleY) {
  const double farPlaneDepth = 2147483647.0;
  const itof::AlignmentParams& params = context.params;
  const double scale[9] = {scaleX, 0.0,    (scaleX - 1.0) * 0.5,  //
                           0.0,    scaleY, (scaleY - 1.0) * 0.5,  //
                           0.0,    0.0,    1.0};
  MatrixMultiply(context.auxRatioIntrinsics, scale, params.auxIntrinsics, 3, 3, 3, 3);

  const double* r = params.rotation;
  const double* t = params.translation;
  const double rotationTranslation[12] = {r[0], r[1], r[2], t[0],  //
                                          r[3], r[4], r[5], t[1],  //
                                          r[6], r[7], r[8], t[2]};
  double projection[12];
  MatrixMultiply(projection, context.auxRatioIntrinsics, rotationTranslation, 3, 3, 3, 4);

  const double fx = params.tofIntrinsics[0], cx = params.tofIntrinsics[2];
  const double fy = params.tofIntrinsics[4], cy = params.tofIntrinsics[5];
  for (int32_t row = 0; row < params.tofHeight; ++row) {
    for (int32_t column = 0; column < params.tofWidth; ++column) {
      Position pixel = {static_cast<double>(column), static_cast<double>(row)};
      if (context.distortionEnabled != 0) pixel = Undistort(context.tofModel, pixel);
      const double point[4] = {((pixel.x - cx) * farPlaneDepth) / fx,  //
                               ((pixel.y - cy) * farPlaneDepth) / fy,  //
                               farPlaneDepth, 1.0};
      double image[3];
      MatrixMultiply(image, projection, point, 3, 4, 4, 1);
      if (image[2] > 0.0) {
        farPlaneMapX[row * params.tofWidth + column] = static_cast<float>(image[0] / image[2]);
        farPlaneMapY[row * params.tofWidth + column] = static_cast<float>(image[1] / image[2]);
      }
    }
  }
}

void DistortLUT(const itof::AlignmentContext& context, float* mapX, float* mapY) {
  const int32_t width = context.params.tofWidth, height = context.params.tofHeight;
  const double* ideal = context.auxRatioIntrinsics;
  const double invIdealFx = 1.0 / ideal[0], invIdealFy = 1.0 / ideal[4];
  const auto& [k1, k2, k3, k4, k5, k6, p1, p2, cx, cy, fx, fy, invFx, invFy] = context.auxModel;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const double yn = invIdealFy * (static_cast<double>(y) - ideal[5]);
      const double yy = yn * yn;
      const double xn = invIdealFx * (static_cast<double>(x) - ideal[2]);
      const double xx = xn * xn;
      const double r2 = yy + xx;

      double t = std::fma(k3, r2, k2);
      t = std::fma(r2, t, k1);
      const double numerator = std::fma(r2, t, 1.0);
      t = std::fma(k6, r2, k5);
      t = std::fma(r2, t, k4);
      const double denominator = std::fma(r2, t, 1.0);
      const double radial = numerator / denominator;
      const double xy2 = yn * (xn + xn);

      double xd = xn * radial;
      xd = std::fma(p1, xy2, xd);
      xd = std::fma(p2, (xx + xx) + r2, xd);
      const double u = std::fma(fx, xd, cx);
      double yd = yn * radial;
      yd = std::fma(p1, (yy + yy) + r2, yd);
      yd = std::fma(p2, xy2, yd);
      const double v = std::fma(fy, yd, cy);
      if (!(u >= 0.0 && u < width && v >= 0.0 && v < height)) continue;
      mapX[y * width + x] = static_cast<float>(u);
      mapY[y * width + x] = static_cast<float>(v);
    }
  }
}

int32_t RunApproximateAlignment(itof::AlignmentContext& context, const uint16_t* frame, uint16_t* workingBuffer,
                                const float* farPlaneMapX, const float* farPlaneMapY, const float* distortMapX,
                                const float* distortMapY) {
  const itof::AlignmentParams& params = context.params;
  const double fx = context.auxRatioIntrinsics[0], tx = params.translation[0];
  const double fy = context.auxRatioIntrinsics[4], ty = params.translation[1];
  double xPos = 0.0, yPos = 0.0;
  for (int32_t y = 0; y < params.tofHeight; ++y) {
    for (int32_t x = 0; x < params.tofWidth; ++x) {
      const int32_t i = y * params.tofWidth + x;
      const int confidence = frame[i] >> 13;
      context.confidence[static_cast<size_t>(i)] = static_cast<uint8_t>(confidence);

      // A pixel without depth uses the position of the pixel before it.
      const double depth = static_cast<double>(frame[i] & 0x1FFF) / 10.0;
      if (depth != 0.0) {
        yPos = (fy * ty) / depth + static_cast<double>(farPlaneMapY[i]);
        xPos = (fx * tx) / depth + static_cast<double>(farPlaneMapX[i]);
      }

      int32_t u = TruncateToInt32(xPos + 0.5);
      int32_t v = TruncateToInt32(yPos + 0.5);
      if (context.distortionEnabled != 0 && u >= 0 && u < params.tofWidth && v >= 0 && v < params.tofHeight) {
        const int32_t j = v * params.tofWidth + u;
        u = TruncateToInt32(static_cast<double>(distortMapX[j]));
        v = TruncateToInt32(static_cast<double>(distortMapY[j]));
      }
      if (u < 0 || u >= params.auxWidth || v < 0 || v >= params.auxHeight) continue;
      workingBuffer[v * params.auxWidth + u] = static_cast<uint16_t>((frame[i] & 0x0FF0) | (confidence << 13));
    }
  }
  return 1;
}

uint16_t AlignedWord(uint16_t workingWord) {
  return static_cast<uint16_t>((workingWord >> 5 & 0x0700) | (workingWord >> 4 & 0x00FF));
}

}  // namespace plain
