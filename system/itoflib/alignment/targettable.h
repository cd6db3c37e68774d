// Where the pixels of each ideal position land in the aux frame, as one index: the lens table's two positions, cut to
// integers and tested, so that no pixel has to do it again.
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

/// In the place of a target: outside the aux frame.
inline constexpr uint32_t kDropped = std::numeric_limits<uint32_t>::max();

/// The ideal positions that can lead anywhere: those that the lens table has, and those of the aux frame, where
/// positions that it does not have land unchanged. Nothing, if the aux frame has no pixels.
inline Grid IdealGrid(const AlignmentParams& params, bool distortion) {
  if (PixelCount(params.auxWidth, params.auxHeight) == 0) return {0, 0};
  if (!distortion) return {params.auxWidth, params.auxHeight};
  return {std::max(params.auxWidth, params.tofWidth), std::max(params.auxHeight, params.tofHeight)};
}

/// The integer part of a table entry, not-a-number 0. All that lies beyond `bound`, which is beyond the aux frame, is
/// alike, so that the conversion is defined; a bound on either side from one number compiles to a minimum and a maximum.
ITOF_KERNEL inline int32_t CutEntry(float entry, float bound) {
  entry = entry == entry ? entry : 0.0F;
  entry = entry > -bound ? entry : -bound;
  return static_cast<int32_t>(bound < entry ? bound : entry);
}

/// Fills `table`, which has a border of one cell around the ideal grid, with indices into the aux frame or kDropped.
/// The maps are those of DistortLUT.
ITOF_KERNEL inline void FillTargetTable(const AlignmentParams& params, bool distortion, const float* mapX,
                                        const float* mapY, uint32_t* table) {
  const Grid ideal = IdealGrid(params, distortion);
  const Grid aux{params.auxWidth, params.auxHeight};  // not asked if it has no pixels: the ideal grid has none then
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
