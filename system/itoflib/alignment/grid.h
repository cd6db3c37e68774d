// Row-major grids of cells: pixel counts, and indices in tables that have a border of one cell around the grid.
#ifndef ITOF_ALIGNMENT_GRID_H_
#define ITOF_ALIGNMENT_GRID_H_

#include <cstddef>
#include <cstdint>

#include "alignment/kernelbuild.h"

namespace itof {

/// Pixels of a grid; 0 if a side is below 1.
constexpr size_t PixelCount(int32_t width, int32_t height) {
  return width < 1 || height < 1 ? 0 : static_cast<size_t>(width) * static_cast<size_t>(height);
}

/// A grid of cells, at most 2^31 including its border. Column u runs from 0 to width - 1, row v from 0 to height - 1.
struct Grid {
  int32_t width, height;

  /// Free of branches, so that compilers can vectorise loops that call it.
  ITOF_KERNEL constexpr bool Holds(int32_t u, int32_t v) const {
    return (static_cast<uint32_t>(u) < static_cast<uint32_t>(width)) &
           (static_cast<uint32_t>(v) < static_cast<uint32_t>(height));
  }

  /// Index of a cell in a table with a border of one cell around the grid; u from -1 to width, v from -1 to height.
  ITOF_KERNEL constexpr int32_t IndexWithBorder(int32_t u, int32_t v) const { return (v + 1) * (width + 2) + u + 1; }

  /// Entries of such a table.
  constexpr size_t CountWithBorder() const {
    return (static_cast<size_t>(width) + 2) * (static_cast<size_t>(height) + 2);
  }
};

}  // namespace itof

#endif  // ITOF_ALIGNMENT_GRID_H_
