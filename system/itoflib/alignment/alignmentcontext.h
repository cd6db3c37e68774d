// The record that the alignment steps share: parameters at the working sizes, lens models, per-run maps.
#ifndef ITOF_ALIGNMENT_ALIGNMENTCONTEXT_H_
#define ITOF_ALIGNMENT_ALIGNMENTCONTEXT_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "calibration/alignmentparams.h"

namespace itof {

/// One camera's lens: the rational radial model with two tangential terms, as OpenCV's calibration module uses it,
///   radial = (1 + k1 r^2 + k2 r^4 + k3 r^6) / (1 + k4 r^2 + k5 r^4 + k6 r^6),
/// and the camera matrix in pixels of the working frame. The coefficients stand in another order than in
/// AlignmentParams.
struct CameraModel {
  double k1, k2, k3;
  double k4, k5, k6;
  double p1, p2;
  double cx, cy;
  double fx, fy;
  double invFx, invFy;  // 1 / fx, 1 / fy
};

/// Shared state of the alignment steps. Every buffer but the last is a row-major grid of tofWidth x tofHeight entries,
/// the entry of column x in row y at y * tofWidth + x. Positions are in pixels, integers at the centres of pixels. A
/// value-initialised context is the empty one.
struct AlignmentContext {
  /// Per ToF pixel, the column and row of the ideal aux image, at the run's ratio, at which the aux camera sees that
  /// pixel at the far plane.
  std::unique_ptr<float[]> farPlaneMapX;
  std::unique_ptr<float[]> farPlaneMapY;
  /// Per ideal aux position at the run's ratio, its column and row in the real aux image of the working size.
  std::unique_ptr<float[]> distortMapX;
  std::unique_ptr<float[]> distortMapY;
  /// As given to InitAlignmentContext, but with both camera matrices at the working sizes.
  AlignmentParams params;
  /// Aux camera matrix at the run's ratio; written by AlignmentFarPlane.
  double auxRatioIntrinsics[9];
  /// Confidence (0..7) of each ToF pixel of the last frame; undefined before the first.
  std::unique_ptr<uint8_t[]> confidence;
  /// Not 0: ToF pixels are undistorted, and aux positions are looked up in the distortion maps.
  uint8_t distortionEnabled;
  CameraModel tofModel;
  CameraModel auxModel;
  /// Where the pixels of each ideal cell land, an index into the aux frame: one entry per cell of a grid that holds the
  /// ToF and the aux frame, with a border of one cell; at most 2^31. Written by RunApproximateAlignment in each call, or
  /// by PrepareTargets.
  std::vector<uint32_t> targets;
  /// `targets` is what the context's own distortion maps say; set by PrepareTargets.
  bool targetsPrepared;
};

/// The 3x3 matrix that resizes a pixel grid by `scaleX` and `scaleY` with the centres of pixels kept: a position p goes
/// to scale * p + (scale - 1) / 2. Multiplied from the left into a camera matrix.
constexpr std::array<double, 9> ScaleMatrix(double scaleX, double scaleY) {
  return {scaleX, 0, (scaleX - 1) * 0.5, 0, scaleY, (scaleY - 1) * 0.5, 0, 0, 1};
}

/// Fills the empty `context` for a camera pair: copies `params`, brings both camera matrices to the working sizes,
/// derives the lens models, and allocates the buffers, the maps filled with 0. Validates nothing: sizes or focal
/// lengths of 0 give infinite or not-a-number values. Throws std::bad_alloc; the buffers allocated until then stay with
/// the context.
void InitAlignmentContext(AlignmentContext& context, const AlignmentParams& params, uint8_t distortionEnabled);

/// Frees the buffers: confidence, far-plane maps, distortion maps, targets, in this order. The other fields stay.
void ReleaseAlignmentContext(AlignmentContext& context);

}  // namespace itof

#endif  // ITOF_ALIGNMENT_ALIGNMENTCONTEXT_H_
