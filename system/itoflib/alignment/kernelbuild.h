// One text for each kernel, compiled twice where a processor may or may not have the instructions that it is best run
// with: on x86-64 once for the baseline, whose fused steps are calls of the C library, and once for AVX2 and FMA. Both
// give the same bits. 64-bit Arm always has all that the kernels need, so there the one build is the best one.
#ifndef ITOF_ALIGNMENT_KERNELBUILD_H_
#define ITOF_ALIGNMENT_KERNELBUILD_H_

namespace itof {

enum class KernelBuild { kBaseline, kAvx2Fma };

/// The build that suits the processor that this runs on.
KernelBuild PickKernelBuild();

/// What the build asks of the processor, for reports: "x86-64 with AVX2 and FMA", "64-bit Arm" and the like.
const char* KernelBuildName(KernelBuild build);

#if defined(__x86_64__)
/// The same kernel with every instruction of AVX2 and FMA at the compiler's disposal.
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

/// Marks a function that is part of a kernel: its text is compiled into each build of the kernel, never beside them.
#define ITOF_KERNEL __attribute__((always_inline))

#endif  // ITOF_ALIGNMENT_KERNELBUILD_H_
