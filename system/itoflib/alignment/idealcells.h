// The ideal cells of depth pixels. The cell is defined by double precision arithmetic with two divisions a pixel. Float
// arithmetic with one division, twice as many pixels at once, gives the position up to an error that is known, and so
// gives the same cell for all pixels but the few whose position lies closer to the edge of a cell than that error. Only
// these are computed as defined.
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

/// What the parallax of a run is made of.
struct Parallax {
  double x, y;  // pixels at a depth of 1
  /// The same for a depth code of 1.
  float estimateX, estimateY;
  /// The estimate of a position is less than this, in pixels, off the defined one, for the codes above `nearest`.
  float error;
  /// Up to this code the parallax is larger than the grid, and is not estimated.
  uint32_t nearest;
  /// Estimates are clamped to this, beyond the grid on either side.
  float boundX, boundY;
};

inline Parallax MakeParallax(double x, double y, Grid grid) {
  // What the roundings of an estimate come to, each 2^-24 of the number that is rounded: three of the parallax (of its
  // constant, of the reciprocal, of their product), one each of its sum with the half, of the position and of the
  // position's upper limit. For the codes that are estimated, and short of the clamps, none of these numbers is larger
  // than the larger side plus 1.5. The 16 covers those 1.5s, the roundings of the half and of the error itself, and
  // those of the defined position, which are in double precision.
  constexpr int32_t kLargestSide = 1 << 20;
  const int32_t side = std::max(grid.width, grid.height);
  const double codes = 10 * std::max(std::fabs(x), std::fabs(y)) / side;
  const bool usable = side >= 1 && side <= kLargestSide && std::fabs(x) < 1e30 && std::fabs(y) < 1e30;
  if (!usable) return {x, y, 0, 0, 0, 0x2000, 0.5F, 0.5F};
  return {.x = x,
          .y = y,
          .estimateX = static_cast<float>(10 * x),
          .estimateY = static_cast<float>(10 * y),
          .error = 0x1p-24F * (6.0F * static_cast<float>(side) + 16.0F),
          .nearest = static_cast<uint32_t>(std::min(codes, 8192.0)),
          .boundX = static_cast<float>(grid.width) + 0.5F,
          .boundY = static_cast<float>(grid.height) + 0.5F};
}

/// The ideal position, as it is defined, of a pixel that has depth and is seen at (farX, farY) at the far plane.
struct IdealPosition {
  IdealPosition(const Parallax& parallax, uint16_t word, float farX, float farY)
      : x(parallax.x / (DepthCode(word) / 10.0) + static_cast<double>(farX)),
        y(parallax.y / (DepthCode(word) / 10.0) + static_cast<double>(farY)) {}

  double x, y;
};

/// The index, with border, of a pixel's ideal cell, as it is defined. Out of line, so that it stays what it is here for:
/// rare.
[[gnu::noinline]] inline int32_t IdealCell(const Parallax& parallax, Grid grid, uint16_t word, float farX, float farY) {
  const IdealPosition ideal(parallax, word, farX, farY);
  const int32_t u = IntegerPart(ideal.x + 0.5);
  const int32_t v = IntegerPart(ideal.y + 0.5);
  return grid.Holds(u, v) ? grid.IndexWithBorder(u, v) : 0;
}

/// Pixels whose cells are found together: few enough for the first-level cache.
inline constexpr int32_t kCellBlock = 128;

/// The index, with border, of the ideal cell of each of `count` pixels, at most kCellBlock; of a pixel of depth code 0,
/// that of any cell. `farX` and `farY` are the pixels' far-plane positions.
ITOF_KERNEL inline void FindIdealCells(const Parallax& parallax, Grid grid, const uint16_t* __restrict words,
                                       const float* __restrict farX, const float* __restrict farY, int32_t count,
                                       int32_t (&cells)[kCellBlock]) {
  const auto [px, py, estimateX, estimateY, error, nearest, boundX, boundY] = parallax;
  // Codes less 1, so that 0 counts as the most distant.
  uint16_t closest = 0xFFFF;
  for (int32_t i = 0; i < count; ++i) {
    closest = std::min(closest, static_cast<uint16_t>(DepthCode(words[i]) - 1));
  }
  // A cell is sure if the lower and the upper limit of the position lie in it.
  const float lowerHalf = 0.5F - error;
  int32_t unsure[kCellBlock];
  int32_t anyUnsure = 0;
  for (int32_t i = 0; i < count; ++i) {
    const float inverse = 1.0F / static_cast<float>(DepthCode(words[i]));
    float x = (estimateX * inverse + lowerHalf) + farX[i];
    float y = (estimateY * inverse + lowerHalf) + farY[i];
    x = x > -boundX ? x : -boundX;
    y = y > -boundY ? y : -boundY;
    x = boundX < x ? boundX : x;
    y = boundY < y ? boundY : y;
    const int32_t u = static_cast<int32_t>(x);
    const int32_t v = static_cast<int32_t>(y);
    const float notANumber = farX[i] + farY[i];
    unsure[i] = (u ^ static_cast<int32_t>(x + 2 * error)) | (v ^ static_cast<int32_t>(y + 2 * error)) |
                (notANumber == notANumber ? 0 : -1);
    anyUnsure |= unsure[i];
    cells[i] = grid.IndexWithBorder(std::max(u, -1), std::max(v, -1));
  }
  if (anyUnsure == 0 && closest >= nearest) return;
  for (int32_t i = 0; i < count; ++i) {
    if (unsure[i] == 0 && static_cast<uint16_t>(DepthCode(words[i]) - 1) >= nearest) continue;
    cells[i] = IdealCell(parallax, grid, words[i], farX[i], farY[i]);
  }
}

}  // namespace itof

#endif  // ITOF_ALIGNMENT_IDEALCELLS_H_
