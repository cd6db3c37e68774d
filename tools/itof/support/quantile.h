// Computes quantiles of the figures that commands print.
#ifndef ITOF_TOOL_SUPPORT_QUANTILE_H_
#define ITOF_TOOL_SUPPORT_QUANTILE_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace itoftool {

/// Returns the smallest value that is at least as large as a share `q` (0..1) of the values. `sorted` is ascending and
/// not empty.
inline double Quantile(const std::vector<double>& sorted, double q) {
  const double rank = std::ceil(q * static_cast<double>(sorted.size()));
  return sorted[static_cast<size_t>(std::max(rank, 1.0)) - 1];
}

}  // namespace itoftool

#endif  // ITOF_TOOL_SUPPORT_QUANTILE_H_
