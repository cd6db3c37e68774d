// Measures the library's speed: single workloads with Google Benchmark, or all targets against reference functions.
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
      "itof_bench --targets  compares the library with reference functions; exit code 0 if no limit is exceeded,\n"
      "                      1 if one is, 2 if it cannot measure\n\n");
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
  const itoftool::Silence silence(stdout);  // Google Benchmark prints its report after this function returns
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
    std::fprintf(stderr, "itof_bench: needs a processor with FMA, which the plain form is compiled for\n");
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
