// How much memory of this process is resident.
#ifndef ITOF_BENCH_RESIDENTMEMORY_H_
#define ITOF_BENCH_RESIDENTMEMORY_H_

#include <fstream>
#include <stdexcept>
#include <string>

namespace itofbench {

/// The exact figure: that of /proc/self/statm may be off by as much as is looked for here. Throws std::runtime_error.
inline double ResidentKiB() {
  std::ifstream rollup("/proc/self/smaps_rollup");
  std::string word;
  double resident = 0;
  while (rollup >> word && word != "Rss:") continue;
  if (!(rollup >> resident)) throw std::runtime_error("/proc/self/smaps_rollup: no resident size");
  return resident;
}

}  // namespace itofbench

#endif  // ITOF_BENCH_RESIDENTMEMORY_H_
