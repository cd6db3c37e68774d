// Reads how much memory of this process is resident.
#ifndef ITOF_BENCH_RESIDENTMEMORY_H_
#define ITOF_BENCH_RESIDENTMEMORY_H_

#include <fstream>
#include <stdexcept>
#include <string>

namespace itofbench {

/// Resident memory in KiB, exact: /proc/self/statm can be off by as much as the growth that callers look for. Throws
/// std::runtime_error if it cannot be read.
inline double ResidentKiB() {
  std::ifstream rollup("/proc/self/smaps_rollup");
  std::string word;
  double resident = 0;
  while (rollup >> word && word != "Rss:") continue;
  if (!(rollup >> resident)) throw std::runtime_error("/proc/self/smaps_rollup: cannot read the resident size");
  return resident;
}

}  // namespace itofbench

#endif  // ITOF_BENCH_RESIDENTMEMORY_H_
