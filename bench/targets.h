// What the library's speed is held against.
#ifndef ITOF_BENCH_TARGETS_H_
#define ITOF_BENCH_TARGETS_H_

#include <vector>

#include "workloads.h"

namespace itofbench {

/// Measures the library beside its yardsticks and prints a row for each target: our figure, the bound that it must not
/// exceed, what is aimed at, and whether the bound holds. Returns whether all do. Takes minutes. Throws
/// std::runtime_error.
bool MeasureTargets(const std::vector<Workload>& workloads);

}  // namespace itofbench

#endif  // ITOF_BENCH_TARGETS_H_
