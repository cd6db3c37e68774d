// Times the library: one workload after the other with Google Benchmark, or beside the yardsticks of its targets.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <string>
#include <vector>

#include "alignment/kernelbuild.h"
#include "support/silence.h"
#include "targets.h"
#include "workloads.h"

namespace {

using itofbench::Workload;

void PrintHelp() {
  std::printf(
      "itof_bench            times each workload with Google Benchmark, which takes the options below\n"
      "itof_bench --targets  times the library beside its yardsticks: 0 if every bound holds, 1 if one is missed,\n"
      "                      2 if nothing could be measured\n\n");
  benchmark::PrintDefaultHelp();
}

std::string ProcessorName() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    const size_t colon = line.find(": ");
    if (line.starts_with("model name") && colon != std::string::npos) return line.substr(colon + 2);
  }
  return "unknown";
}

void TimeWithGoogleBenchmark(benchmark::State& state, const Workload& workload) {
  const itoftool::Silence silence(stdout);  // until the loop is over: reports go to the same stream
  itofbench::TimeOnce(workload);
  for ([[maybe_unused]] auto iteration : state) state.SetIterationTime(itofbench::TimeOnce(workload));
  state.SetItemsProcessed(state.iterations() * itofbench::kPixels);
}

int Run(int argc, char** argv) {
  const bool targets = argc > 1 && std::strcmp(argv[1], "--targets") == 0;
  if (targets && argc > 2) {
    std::fprintf(stderr, "itof_bench: --targets takes no further arguments\n");
    return 2;
  }
  if (!targets) {
    benchmark::Initialize(&argc, argv, PrintHelp);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  }
#ifdef __x86_64__
  if (!__builtin_cpu_supports("fma")) {
    std::fprintf(stderr, "itof_bench: the plain forms are built for a processor with FMA\n");
    return 2;
  }
#endif

  const std::vector<Workload> workloads = itofbench::MakeWorkloads();
  const char* kernels = itof::KernelBuildName(itof::PickKernelBuild());
  if (targets) {
    std::printf("kernels: %s\ncompiler: %s\nprocessor: %s\n\n", kernels, ITOF_COMPILER, ProcessorName().c_str());
    return itofbench::MeasureTargets(workloads) ? 0 : 1;
  }
  benchmark::AddCustomContext("kernels", kernels);
  benchmark::AddCustomContext("compiler", ITOF_COMPILER);
  for (const Workload& workload : workloads) {
    benchmark::RegisterBenchmark(workload.name.c_str(), TimeWithGoogleBenchmark, workload)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "itof_bench: %s\n", error.what());
    return 2;
  }
}
