// Builds and releases the state that the alignment steps share. The steps themselves allocate nothing.
#include "alignment/alignmentcontext.h"

#include <algorithm>

#include "alignment/grid.h"
#include "alignment/matrixmultiply.h"
#include "alignment/targettable.h"

namespace itof {
namespace {

/// Scales a camera matrix, in place, from the calibration image to the working frame.
void ScaleIntrinsics(double (&intrinsics)[9], int32_t width, int32_t calibWidth, int32_t height, int32_t calibHeight) {
  const auto scale = ScaleMatrix(static_cast<double>(width) / calibWidth, static_cast<double>(height) / calibHeight);
  double scaled[9];
  MatrixMultiply(scaled, scale.data(), intrinsics, 3, 3, 3, 3);
  std::ranges::copy(scaled, intrinsics);
}

CameraModel MakeCameraModel(const double (&k)[9], const double (&d)[8]) {
  return {.k1 = d[0],
          .k2 = d[1],
          .k3 = d[4],
          .k4 = d[5],
          .k5 = d[6],
          .k6 = d[7],
          .p1 = d[2],
          .p2 = d[3],
          .cx = k[2],
          .cy = k[5],
          .fx = k[0],
          .fy = k[4],
          .invFx = 1.0 / k[0],
          .invFy = 1.0 / k[4]};
}

}  // namespace

void InitAlignmentContext(AlignmentContext& context, const AlignmentParams& params, uint8_t distortionEnabled) {
  context.distortionEnabled = distortionEnabled;
  context.params = params;
  context.targetsPrepared = false;

  const size_t tofPixels = PixelCount(params.tofWidth, params.tofHeight);
  context.confidence = std::make_unique_for_overwrite<uint8_t[]>(tofPixels);
  context.farPlaneMapX = std::make_unique<float[]>(tofPixels);
  context.farPlaneMapY = std::make_unique<float[]>(tofPixels);
  context.distortMapX = std::make_unique<float[]>(tofPixels);
  context.distortMapY = std::make_unique<float[]>(tofPixels);
  context.targets.resize(IdealGrid(params, distortionEnabled != 0).CountWithBorder());

  AlignmentParams& p = context.params;
  ScaleIntrinsics(p.tofIntrinsics, p.tofWidth, p.tofCalibWidth, p.tofHeight, p.tofCalibHeight);
  ScaleIntrinsics(p.auxIntrinsics, p.auxWidth, p.auxCalibWidth, p.auxHeight, p.auxCalibHeight);
  context.tofModel = MakeCameraModel(p.tofIntrinsics, p.tofDistortion);
  context.auxModel = MakeCameraModel(p.auxIntrinsics, p.auxDistortion);
}

void ReleaseAlignmentContext(AlignmentContext& context) {
  context.confidence.reset();
  context.farPlaneMapX.reset();
  context.farPlaneMapY.reset();
  context.distortMapX.reset();
  context.distortMapY.reset();
  context.targets = {};
  context.targetsPrepared = false;
}

}  // namespace itof
