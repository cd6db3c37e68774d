// Checks which build of the kernels runs. A build that is never chosen would pass every other test.
#include "alignment/kernelbuild.h"

#include <gtest/gtest.h>
#ifdef __x86_64__
#include <cpuid.h>
#endif

#include <vector>

#include "alignment/distortlut.h"

namespace {

int g_fusedCalls = 0;

}  // namespace

// Replaces the C library's function. The baseline build calls it for each fused step, the vector build never.
extern "C" double fma(double a, double b, double c) {
  ++g_fusedCalls;
  return a * b + c;
}

namespace {

TEST(KernelBuild, IsTheVectorBuildIfTheProcessorCanRunIt) {
#ifdef __x86_64__
  // This asks the processor itself, so it is right in an emulator too.
  unsigned a = 0, b = 0, c = 0, d = 0;
  ASSERT_NE(__get_cpuid(1, &a, &b, &c, &d), 0);
  const bool fusedSteps = (c & bit_FMA) != 0 && (c & bit_OSXSAVE) != 0;
  const bool vectors = __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_AVX2) != 0;
  const bool expected = fusedSteps && vectors;
  EXPECT_EQ(itof::PickKernelBuild(), expected ? itof::KernelBuild::kAvx2Fma : itof::KernelBuild::kBaseline);

#ifdef __OPTIMIZE__  // without optimisation, GCC calls the C library in both builds
  itof::AlignmentContext context{};
  context.params.tofWidth = context.params.tofHeight = 8;
  std::vector<float> mapX(64), mapY(64);
  itof::DistortLUT(context, mapX.data(), mapY.data());
  EXPECT_EQ(g_fusedCalls == 0, expected) << g_fusedCalls << " fused steps by the C library's function";
#endif
#else
  EXPECT_EQ(itof::PickKernelBuild(), itof::KernelBuild::kBaseline);
#endif
}

}  // namespace
