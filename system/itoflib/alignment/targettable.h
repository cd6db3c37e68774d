// Fills the target table, which holds for each ideal cell the index of the aux cell where its pixels land. Cutting and
// testing the lens table's positions here, once per run, saves doing it for every pixel of every frame.
#ifndef ITOF_ALIGNMENT_TARGETTABLE_H_
#define ITOF_ALIGNMENT_TARGETTABLE_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "alignment/alignmentcontext.h"
#include "alignment/grid.h"
#include "alignment/kernelbuild.h"

namespace itof {

/// In place of a target: the pixel lands outside the aux frame and is dropped.
inline constexpr uint32_t kDropped = std::numeric_limits<uint32_t>::max();

/// The ideal cells from which a pixel can land: those of the lens table and those of the aux frame. A cell that the
/// lens table does not cover is its own target. Empty if the aux frame has no pixels.
inline Grid IdealGrid(const AlignmentParams& params, bool distortion) {
  if (PixelCount(params.auxWidth, params.auxHeight) == 0) return {0, 0};
  if (!distortion) return {params.auxWidth, params.auxHeight};
  return {std::max(params.auxWidth, params.tofWidth), std::max(params.auxHeight, params.tofHeight)};
}

/// The integer part of a lens table entry; not-a-number gives 0. Entries are clamped to `bound` on either side of 0,
/// which is outside the aux frame, so that the conversion is defined.
ITOF_KERNEL inline int32_t CutEntry(float entry, float bound) {
  entry = entry == entry ? entry : 0.0F;
  entry = entry > -bound ? entry : -bound;
  return static_cast<int32_t>(bound < entry ? bound : entry);
}

/// Fills `table`, which covers the ideal grid with a border of one cell, with indices into the aux frame or kDropped.
/// `mapX` and `mapY` are the lens table.
ITOF_KERNEL inline void FillTargetTable(const AlignmentParams& params, bool distortion, const float* mapX,
                                        const float* mapY, uint32_t* table) {
  const Grid ideal = IdealGrid(params, distortion);
  const Grid aux{params.auxWidth, params.auxHeight};  // not used if it has no pixels: then the ideal grid has none
  const float bound = std::min(2.0F * static_cast<float>(std::max(aux.width, aux.height)), 0x1.fffffep30F);
  std::fill_n(table, ideal.width + 2, kDropped);
  std::fill_n(table + ideal.IndexWithBorder(-1, ideal.height), ideal.width + 2, kDropped);
  for (int32_t row = 0; row < ideal.height; ++row) {
    uint32_t* __restrict targets = table + ideal.IndexWithBorder(0, row);
    const int32_t mapped = distortion && row < params.tofHeight ? std::max(params.tofWidth, 0) : 0;
    const float* __restrict x = mapX + ptrdiff_t{row} * mapped;
    const float* __restrict y = mapY + ptrdiff_t{row} * mapped;
    for (int32_t column = 0; column < mapped; ++column) {
      const int32_t u = CutEntry(x[column], bound);
      const int32_t v = CutEntry(y[column], bound);
      targets[column] = aux.Holds(u, v) ? static_cast<uint32_t>(v * aux.width + u) : kDropped;
    }
    for (int32_t column = mapped; column < ideal.width; ++column) {
      targets[column] = aux.Holds(column, row) ? static_cast<uint32_t>(row * aux.width + column) : kDropped;
    }
    targets[-1] = targets[ideal.width] = kDropped;
  }
}

}  // namespace itof

#endif  // ITOF_ALIGNMENT_TARGETTABLE_H_
