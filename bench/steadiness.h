// What a median hides: how steady a frame's time is, and whether frames take memory.
#ifndef ITOF_BENCH_STEADINESS_H_
#define ITOF_BENCH_STEADINESS_H_

#include <optional>

#include "workloads.h"

namespace itofbench {

/// 99th percentile over median of 10,000 runs of each of two workloads, which take turns.
struct Tail {
  double ours;
  double yardstick;
};

struct Tails {
  Tail quiet;
  /// With a second process that keeps another core and the memory busy; nothing where this process may use one core.
  std::optional<Tail> busy;
};

/// Both on one core. Throws std::runtime_error.
Tails MeasureTails(const Workload& ours, const Workload& yardstick);

/// Page faults per frame over 1,000 later frames of a run, after the run's first three.
double PageFaultsPerFrame(const Workload& firstFrame, const Workload& laterFrame);

/// KiB by which this process's resident memory grows from the 1,000th to the 100,000th frame, with a new run every 100.
/// Throws std::runtime_error.
double ResidentGrowth(const Workload& firstFrame, const Workload& laterFrame);

}  // namespace itofbench

#endif  // ITOF_BENCH_STEADINESS_H_
