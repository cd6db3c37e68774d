// Runs kernels in the build that suits the processor. Each kernel has one source. On x86-64 it is compiled twice, for
// the baseline and for AVX2 with FMA, and chosen at run time. Results are identical. In the baseline each fused step is
// a call of the C library. 64-bit Arm always has the instructions that the kernels need, so it has one build.
#ifndef ITOF_ALIGNMENT_KERNELBUILD_H_
#define ITOF_ALIGNMENT_KERNELBUILD_H_

#ifdef __FAST_MATH__
#error "-ffast-math changes results, which must be the same bits everywhere"
#endif

namespace itof {

enum class KernelBuild { kBaseline, kAvx2Fma };

/// The build that suits this processor.
KernelBuild PickKernelBuild();

/// The instruction set of a build, for reports, e.g. "x86-64 with AVX2 and FMA" or "64-bit Arm".
const char* KernelBuildName(KernelBuild build);

#if defined(__x86_64__)
/// Runs `kernel` compiled for AVX2 and FMA.
template <typename Kernel>
[[gnu::target("avx2,fma"), gnu::noinline]] void RunKernelAvx2Fma(const Kernel& kernel) {
  kernel();
}
#endif

/// Runs `kernel`, a lambda marked ITOF_KERNEL, in the build that suits the processor.
template <typename Kernel>
void RunKernel(const Kernel& kernel) {
#if defined(__x86_64__)
  if (PickKernelBuild() == KernelBuild::kAvx2Fma) return RunKernelAvx2Fma(kernel);
#endif
  kernel();
}

}  // namespace itof

/// Marks a function that is part of a kernel: it is inlined into each build of the kernel and never compiled
/// separately.
#define ITOF_KERNEL __attribute__((always_inline))

#endif  // ITOF_ALIGNMENT_KERNELBUILD_H_
