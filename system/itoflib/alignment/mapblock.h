// Stores blocks of map columns. The maps of a run are computed in blocks, by several short loops over local arrays. One
// long loop per column would wait for each of its divisions; short loops keep many divisions in flight.
#ifndef ITOF_ALIGNMENT_MAPBLOCK_H_
#define ITOF_ALIGNMENT_MAPBLOCK_H_

#include <cstdint>

#include "alignment/kernelbuild.h"

namespace itof {

/// Columns of a block. The last block of a row is computed in full and stored in part.
inline constexpr int32_t kMapBlock = 128;

/// Stores `count` positions in the two maps, leaving out those for which `wanted`, called with the index in the block,
/// is false. In nearly every block all are wanted, so that case has a loop of its own without a test.
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
