// Picks the build of the kernels by the processor. Tests link another implementation to run the baseline build
// anywhere.
#include "alignment/kernelbuild.h"

namespace itof {

KernelBuild PickKernelBuild() {
#if defined(__x86_64__)
  if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) return KernelBuild::kAvx2Fma;
#endif
  return KernelBuild::kBaseline;
}

const char* KernelBuildName(KernelBuild build) {
  if (build == KernelBuild::kAvx2Fma) return "x86-64 with AVX2 and FMA";
#if defined(__x86_64__)
  return "x86-64 baseline";
#elif defined(__aarch64__)
  return "64-bit Arm";
#else
  return "baseline";
#endif
}

}  // namespace itof
