// Compares the library's speed with that of reference functions.
#ifndef ITOF_BENCH_TARGETS_H_
#define ITOF_BENCH_TARGETS_H_

#include <vector>

#include "workloads.h"

namespace itofbench {

/// Measures all targets and prints a row for each: the figure, the limit that it must not exceed, the goal, and whether
/// the figure is within the limit. Returns whether all are. Takes minutes. Throws std::runtime_error.
bool MeasureTargets(const std::vector<Workload>& workloads);

}  // namespace itofbench

#endif  // ITOF_BENCH_TARGETS_H_
