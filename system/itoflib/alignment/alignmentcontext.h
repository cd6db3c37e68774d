// Declares the state that the alignment steps share: parameters at the working sizes, lens models, per-run maps.
#ifndef ITOF_ALIGNMENT_ALIGNMENTCONTEXT_H_
#define ITOF_ALIGNMENT_ALIGNMENTCONTEXT_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "calibration/alignmentparams.h"

namespace itof {

/// One camera: its lens and its camera matrix in pixels of the working frame. The lens follows the rational radial
/// model with two tangential terms, as in OpenCV's calibration module:
///   radial = (1 + k1 r^2 + k2 r^4 + k3 r^6) / (1 + k4 r^2 + k5 r^4 + k6 r^6).
/// The order of the coefficients differs from that in AlignmentParams.
struct CameraModel {
  double k1, k2, k3;
  double k4, k5, k6;
  double p1, p2;
  double cx, cy;
  double fx, fy;
  double invFx, invFy;  // 1 / fx, 1 / fy
};

/// Shared state of the alignment steps. Every buffer except `targets` is a row-major grid of tofWidth x tofHeight
/// entries: column x of row y is entry y * tofWidth + x. Positions are in pixels; an integer coordinate is the centre
/// of a pixel. A value-initialised context is empty.
struct AlignmentContext {
  /// Far-plane maps. Per ToF pixel: the column and row at which the aux camera sees it at the far plane, in the ideal
  /// (distortion-free) aux image at the run's ratio.
  std::unique_ptr<float[]> farPlaneMapX;
  std::unique_ptr<float[]> farPlaneMapY;
  /// Lens table. Per ideal cell, a whole position in the ideal aux image: its column and row in the real, distorted aux
  /// image at the working size, without the ratio.
  std::unique_ptr<float[]> distortMapX;
  std::unique_ptr<float[]> distortMapY;
  /// The parameters given to InitAlignmentContext, with both camera matrices scaled to the working sizes.
  AlignmentParams params;
  /// Aux camera matrix at the run's ratio; written by AlignmentFarPlane.
  double auxRatioIntrinsics[9];
  /// Confidence (0..7) of each ToF pixel of the last frame; undefined before the first.
  std::unique_ptr<uint8_t[]> confidence;
  /// If not 0, ToF pixels are undistorted and ideal cells are looked up in the lens table.
  uint8_t distortionEnabled;
  CameraModel tofModel;
  CameraModel auxModel;
  /// Target table. Per ideal cell: the index in the aux frame of the cell where its pixels land. The grid of ideal
  /// cells covers the ToF and the aux frame and has a border of one cell; it has at most 2^31 entries. Written by
  /// PrepareTargets, or by RunApproximateAlignment in every call.
  std::vector<uint32_t> targets;
  /// Whether `targets` belongs to the lens table in this context. Set by PrepareTargets; cleared by every function that
  /// makes it stale: InitAlignmentContext, ReleaseAlignmentContext, AlignmentFarPlane, and RunApproximateAlignment with
  /// the lens table of a caller.
  bool targetsPrepared;
};

/// The 3x3 matrix that resizes a pixel grid by `scaleX` and `scaleY` and keeps integers at the centres of pixels:
/// position p becomes scale * p + (scale - 1) / 2. To resize a camera matrix, multiply it from the left.
constexpr std::array<double, 9> ScaleMatrix(double scaleX, double scaleY) {
  return {scaleX, 0, (scaleX - 1) * 0.5, 0, scaleY, (scaleY - 1) * 0.5, 0, 0, 1};
}

/// Fills the empty `context` for a camera pair: copies `params`, scales both camera matrices to the working sizes,
/// derives the lens models, and allocates the buffers, with zeros in the maps. Validates nothing: sizes or focal
/// lengths of 0 give infinite or not-a-number values. Throws std::bad_alloc; the context keeps the buffers it has by
/// then.
void InitAlignmentContext(AlignmentContext& context, const AlignmentParams& params, uint8_t distortionEnabled);

/// Frees the buffers in this order: confidence, far-plane maps, lens table, targets. The other fields keep their
/// values.
void ReleaseAlignmentContext(AlignmentContext& context);

}  // namespace itof

#endif  // ITOF_ALIGNMENT_ALIGNMENTCONTEXT_H_
