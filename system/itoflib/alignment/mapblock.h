// The maps of a run are computed in blocks of columns, by several short loops over local arrays instead of one long one:
// the processor then has many columns in flight at each division, where the long loop would wait for its own results.
#ifndef ITOF_ALIGNMENT_MAPBLOCK_H_
#define ITOF_ALIGNMENT_MAPBLOCK_H_

#include <cstdint>

#include "alignment/kernelbuild.h"

namespace itof {

/// Columns of a block. The last block of a row is computed whole, too, and stored in part.
inline constexpr int32_t kMapBlock = 128;

/// Stores `count` positions in the two maps, those for which `wanted` (of the index in the block) holds. Where all are
/// wanted, as in nearly every block, nothing has to be selected.
template <typename Wanted>
ITOF_KERNEL inline void StorePositions(const double (&u)[kMapBlock], const double (&v)[kMapBlock], int32_t count,
                                       const Wanted& wanted, float* __restrict mapX, float* __restrict mapY) {
  int64_t wantedCount = 0;
  for (int32_t i = 0; i < count; ++i) wantedCount += wanted(i);
  if (wantedCount == count) {
    for (int32_t i = 0; i < count; ++i) {
      mapX[i] = static_cast<float>(u[i]);
      mapY[i] = static_cast<float>(v[i]);
    }
    return;
  }
  for (int32_t i = 0; i < count; ++i) {
    if (!wanted(i)) continue;
    mapX[i] = static_cast<float>(u[i]);
    mapY[i] = static_cast<float>(v[i]);
  }
}

}  // namespace itof

#endif  // ITOF_ALIGNMENT_MAPBLOCK_H_
