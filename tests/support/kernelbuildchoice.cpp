// Replaces the library's PickKernelBuild.
#include "support/kernelbuildchoice.h"

itof::KernelBuild g_kernelBuild = itof::KernelBuild::kBaseline;

itof::KernelBuild itof::PickKernelBuild() { return g_kernelBuild; }

std::vector<itof::KernelBuild> KernelBuilds() {
#ifdef __x86_64__
  if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
    return {itof::KernelBuild::kBaseline, itof::KernelBuild::kAvx2Fma};
  }
#endif
  return {itof::KernelBuild::kBaseline};
}
