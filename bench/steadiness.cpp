// Measures long series of frames: times on a pinned core, page faults and resident memory of the process.
#include "steadiness.h"

#include <benchmark/benchmark.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <vector>

#include "residentmemory.h"

namespace itofbench {
namespace {

cpu_set_t Affinity() {
  cpu_set_t cores;
  if (sched_getaffinity(0, sizeof cores, &cores) != 0) throw std::runtime_error("cannot read the process's cores");
  return cores;
}

void PinTo(size_t core) {
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(core, &one);
  if (sched_setaffinity(0, sizeof one, &one) != 0) throw std::runtime_error("cannot pin this process to a core");
}

/// Runs a child process that copies 64 MiB back and forth on a core for the lifetime of this object. The child ends with
/// its parent.
class BusyNeighbour {
 public:
  explicit BusyNeighbour(size_t core) {
    const pid_t parent = getpid();
    child_ = fork();
    if (child_ < 0) throw std::runtime_error("cannot start a second process");
    if (child_ != 0) return;
    try {
      KeepBusy(parent, core);
    } catch (const std::exception&) {
      _exit(1);  // an error in the child must not run the parent's code
    }
  }
  ~BusyNeighbour() {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }
  bool Lives() const { return waitpid(child_, nullptr, WNOHANG) == 0; }
  BusyNeighbour(const BusyNeighbour&) = delete;
  BusyNeighbour& operator=(const BusyNeighbour&) = delete;

 private:
  [[noreturn]] static void KeepBusy(pid_t parent, size_t core) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(0);  // the parent ended before the request above
    PinTo(core);
    std::vector<std::byte> here(size_t{64} << 20), there(here.size());
    for (;;) {
      std::memcpy(there.data(), here.data(), here.size());
      benchmark::DoNotOptimize(there.data());
      benchmark::ClobberMemory();
      here.swap(there);
    }
  }

  pid_t child_;
};

double PercentileOverMedian(std::vector<double>& seconds) {
  std::ranges::sort(seconds);
  return seconds[seconds.size() * 99 / 100 - 1] / seconds[seconds.size() / 2];
}

Tail MeasureTail(const Workload& ours, const Workload& reference) {
  constexpr int kWarmUp = 200, kRuns = 10'000;
  std::vector<double> a, b;
  for (int i = -kWarmUp; i < kRuns; ++i) {
    const double oursTook = TimeOnce(ours), referenceTook = TimeOnce(reference);
    if (i < 0) continue;
    a.push_back(oursTook);
    b.push_back(referenceTook);
  }
  return {PercentileOverMedian(a), PercentileOverMedian(b)};
}

/// Page faults of this process since its start.
long PageFaults() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_minflt + usage.ru_majflt;
}

}  // namespace

Tails MeasureTails(const Workload& ours, const Workload& reference) {
  const cpu_set_t before = Affinity();
  std::vector<size_t> cores;
  for (size_t core = 0; core < CPU_SETSIZE; ++core) {
    if (CPU_ISSET(core, &before)) cores.push_back(core);
  }
  PinTo(cores[0]);
  Tails tails{MeasureTail(ours, reference), std::nullopt};
  if (cores.size() > 1) {
    const BusyNeighbour neighbour(cores[1]);
    tails.busy = MeasureTail(ours, reference);
    if (!neighbour.Lives()) throw std::runtime_error("the second process ended early");
  }
  sched_setaffinity(0, sizeof before, &before);
  return tails;
}

double PageFaultsPerFrame(const Workload& firstFrame, const Workload& laterFrame) {
  constexpr int kFrames = 1'000;
  TimeOnce(firstFrame);
  TimeOnce(laterFrame);
  TimeOnce(laterFrame);
  const long before = PageFaults();
  for (int i = 0; i < kFrames; ++i) TimeOnce(laterFrame);
  return static_cast<double>(PageFaults() - before) / kFrames;
}

double ResidentGrowth(const Workload& firstFrame, const Workload& laterFrame) {
  double before = ResidentKiB();  // the first reading makes its own code resident
  for (int frame = 1; frame <= 100'000; ++frame) {
    TimeOnce(frame % 100 == 1 ? firstFrame : laterFrame);
    if (frame == 1'000) before = ResidentKiB();
  }
  return ResidentKiB() - before;
}

}  // namespace itofbench
