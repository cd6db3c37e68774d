// Measures what a median hides: how much the time of a frame varies, and whether memory use grows.
#ifndef ITOF_BENCH_STEADINESS_H_
#define ITOF_BENCH_STEADINESS_H_

#include <optional>

#include "workloads.h"

namespace itofbench {

/// 99th percentile over median of two workloads, each over 10,000 runs that alternate with the other's.
struct Tail {
  double ours;
  double reference;
};

struct Tails {
  Tail quiet;
  /// The same while a second process keeps another core and the memory busy; empty if this process may use only one core.
  std::optional<Tail> busy;
};

/// Runs both workloads on one core. Throws std::runtime_error.
Tails MeasureTails(const Workload& ours, const Workload& reference);

/// Page faults per frame over 1,000 later frames of a run, after the run's first three.
double PageFaultsPerFrame(const Workload& firstFrame, const Workload& laterFrame);

/// Growth in KiB of this process's resident memory from the 1,000th to the 100,000th frame, with a new run every 100
/// frames. Throws std::runtime_error.
double ResidentGrowth(const Workload& firstFrame, const Workload& laterFrame);

}  // namespace itofbench

#endif  // ITOF_BENCH_STEADINESS_H_
