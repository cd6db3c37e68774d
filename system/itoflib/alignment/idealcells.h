// Finds the ideal cells of depth pixels. A cell is defined by double-precision arithmetic with three divisions per
// pixel. An estimate in float arithmetic with one division handles twice as many pixels at once, and its error has a
// known bound. Only pixels whose estimate lies closer to the edge of a cell than that bound are computed as defined.
#ifndef ITOF_ALIGNMENT_IDEALCELLS_H_
#define ITOF_ALIGNMENT_IDEALCELLS_H_

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "alignment/grid.h"
#include "alignment/kernelbuild.h"
#include "integerpart.h"
#include "pixelwords.h"

namespace itof {

/// The parallax of a run, and what its estimate needs.
struct Parallax {
  double x, y;                   // pixels at a depth of 1, that is at a depth code of 10
  float estimateX, estimateY;    // pixels at a depth code of 1
  float errorBound;              // of an estimated position, pixels
  uint32_t largestNotEstimated;  // depth codes up to this one have a parallax larger than the grid
  float clampX, clampY;          // estimated positions are clamped to this, on either side of 0
};

/// In the place of Parallax::largestNotEstimated: no code is estimated.
inline constexpr uint32_t kEstimateNone = kDepthCodes;

/// Bounds the error of estimated positions in a grid whose larger side is `side`. Rounding a number to float changes it
/// by at most 2^-24 of itself. These are rounded, and none of them exceeds side + 1.5, since larger parallaxes are not
/// estimated and larger positions are clamped:
///   1. the parallax at a depth code of 1
///   2. the reciprocal of the depth code
///   3. their product, the parallax
///   4. its sum with the 0.5 that rounds a position to the nearest cell
///   5. its sum with the far-plane position
///   6. its sum with twice the bound, the upper limit of the position
/// That is 6 * side + 9. Another 7 cover the rounding of the half, of this bound and of the defined position, which is
/// in double precision, and products of two rounding errors.
inline float EstimateErrorBound(int32_t side) { return 0x1p-24F * (6.0F * static_cast<float>(side) + 16.0F); }

/// `x` and `y` are the focal length times the translation of the two axes, in pixels times units of ten depth codes.
inline Parallax MakeParallax(double x, double y, Grid grid) {
  constexpr int32_t kLargestSide = 1 << 20;  // the bound stays well below half a pixel
  const int32_t side = std::max(grid.width, grid.height);
  const bool usable = side >= 1 && side <= kLargestSide && std::fabs(x) < 1e30 && std::fabs(y) < 1e30;
  if (!usable) {
    return {.x = x,
            .y = y,
            .estimateX = 0,
            .estimateY = 0,
            .errorBound = 0,
            .largestNotEstimated = kEstimateNone,
            .clampX = 0.5F,
            .clampY = 0.5F};
  }
  const double codes = 10 * std::max(std::fabs(x), std::fabs(y)) / side;
  return {.x = x,
          .y = y,
          .estimateX = static_cast<float>(10 * x),
          .estimateY = static_cast<float>(10 * y),
          .errorBound = EstimateErrorBound(side),
          .largestNotEstimated = static_cast<uint32_t>(std::min(codes, double{kEstimateNone})),
          .clampX = static_cast<float>(grid.width) + 0.5F,
          .clampY = static_cast<float>(grid.height) + 0.5F};
}

/// A position in the ideal aux image at the run's ratio, in pixels.
struct IdealPosition {
  double x, y;
};

/// The ideal position, as defined, of a pixel with depth whose far-plane position is (farX, farY).
inline IdealPosition FindIdealPosition(const Parallax& parallax, uint16_t word, float farX, float farY) {
  const double depth = DepthCode(word) / 10.0;
  return {parallax.x / depth + static_cast<double>(farX), parallax.y / depth + static_cast<double>(farY)};
}

/// The index, with border, of a pixel's ideal cell, as defined. Out of line because it is called rarely.
[[gnu::noinline]] inline int32_t IdealCell(const Parallax& parallax, Grid grid, uint16_t word, float farX, float farY) {
  const IdealPosition ideal = FindIdealPosition(parallax, word, farX, farY);
  const int32_t u = IntegerPart(ideal.x + 0.5);
  const int32_t v = IntegerPart(ideal.y + 0.5);
  return grid.Holds(u, v) ? grid.IndexWithBorder(u, v) : 0;
}

/// Pixels whose cells are found together: few enough for the first-level cache.
inline constexpr int32_t kCellBlock = 128;

/// Stores in `cells` the index, with border, of the ideal cell of each of `count` pixels, at most kCellBlock. A pixel
/// of depth code 0 gets the index of any cell. `farX` and `farY` are the pixels' far-plane positions.
ITOF_KERNEL inline void FindIdealCells(const Parallax& parallax, Grid grid, const uint16_t* __restrict words,
                                       const float* __restrict farX, const float* __restrict farY, int32_t count,
                                       int32_t (&cells)[kCellBlock]) {
  const Parallax p = parallax;  // a copy, so that no store below can change it
  // Codes minus 1, so that code 0 counts as the most distant.
  uint16_t closest = 0xFFFF;
  for (int32_t i = 0; i < count; ++i) {
    closest = std::min(closest, static_cast<uint16_t>(DepthCode(words[i]) - 1));
  }
  // A cell is certain if the lower and the upper limit of the position lie in it.
  const float lowerHalf = 0.5F - p.errorBound;
  int32_t uncertain[kCellBlock];
  int32_t anyUncertain = 0;
  for (int32_t i = 0; i < count; ++i) {
    const uint16_t code = std::max<uint16_t>(DepthCode(words[i]), 1);  // the cell of code 0 is not used
    const float inverse = 1.0F / static_cast<float>(code);
    float x = (p.estimateX * inverse + lowerHalf) + farX[i];
    float y = (p.estimateY * inverse + lowerHalf) + farY[i];
    x = x > -p.clampX ? x : -p.clampX;
    y = y > -p.clampY ? y : -p.clampY;
    x = p.clampX < x ? p.clampX : x;
    y = p.clampY < y ? p.clampY : y;
    const int32_t u = static_cast<int32_t>(x);
    const int32_t v = static_cast<int32_t>(y);
    const float notANumber = farX[i] + farY[i];
    uncertain[i] = (u ^ static_cast<int32_t>(x + 2 * p.errorBound)) | (v ^ static_cast<int32_t>(y + 2 * p.errorBound)) |
                   (notANumber == notANumber ? 0 : -1);
    anyUncertain |= uncertain[i];
    cells[i] = grid.IndexWithBorder(std::max(u, -1), std::max(v, -1));
  }
  if (anyUncertain == 0 && closest >= p.largestNotEstimated) return;
  for (int32_t i = 0; i < count; ++i) {
    if (uncertain[i] == 0 && static_cast<uint16_t>(DepthCode(words[i]) - 1) >= p.largestNotEstimated) continue;
    if (DepthCode(words[i]) == 0) continue;
    cells[i] = IdealCell(parallax, grid, words[i], farX[i], farY[i]);
  }
}

}  // namespace itof

#endif  // ITOF_ALIGNMENT_IDEALCELLS_H_
