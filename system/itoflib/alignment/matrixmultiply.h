// Multiplies row-major matrices of doubles with one rounding per step.
#ifndef ITOF_ALIGNMENT_MATRIXMULTIPLY_H_
#define ITOF_ALIGNMENT_MATRIXMULTIPLY_H_

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace itof {

/// out = a * b, all row-major: `a` is rows x aRowLength, of which the first `inner` columns are used, `b` is inner x
/// cols, `out` is rows x cols. Each entry is summed from 0.0 with fused steps in order of increasing index, which fixes
/// its last bit. `inner` below 1 gives zeros; `rows` or `cols` below 1 writes nothing. `out` must not overlap `a` or
/// `b`.
inline void MatrixMultiply(double* out, const double* a, const double* b, int32_t rows, int32_t aRowLength,
                           int32_t inner, int32_t cols) {
  for (int32_t i = 0; i < rows; ++i) {
    for (int32_t j = 0; j < cols; ++j) {
      double sum = 0.0;
      for (int32_t k = 0; k < inner; ++k) {
        sum = std::fma(a[ptrdiff_t{i} * aRowLength + k], b[ptrdiff_t{k} * cols + j], sum);
      }
      out[ptrdiff_t{i} * cols + j] = sum;
    }
  }
}

}  // namespace itof

#endif  // ITOF_ALIGNMENT_MATRIXMULTIPLY_H_
