// Compares the self-test's expected digests with the plain form and with every build of the kernels.
#include "selftest/selftest.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "plain/plainsteps.h"
#include "support/kernelbuildchoice.h"

namespace itoftool::selftest {
namespace {

/// The digests as source text of expected.cpp.
std::string SourceText(const Digests& all) {
  std::string text;
  for (const CaseDigests& digests : all) {
    for (size_t i = 0; i < kStages; ++i) {
      char number[16];
      std::snprintf(number, sizeof number, "0x%08x", digests[i]);
      text += (i == 0 ? "    {" : ", ") + std::string(number);
    }
    text += "},\n";
  }
  return text;
}

TEST(SelfTest, PlainFormGivesTheExpectedDigests) {
  const Digests digests = RunCases({plain::InitAlignmentContext, plain::AlignmentFarPlane, plain::DistortLUT,
                                    plain::RunApproximateAlignment, plain::AlignedWord});
  EXPECT_EQ(SourceText(digests), SourceText(kExpected));
}

TEST(SelfTest, EveryKernelBuildGivesTheExpectedDigests) {
  for (const itof::KernelBuild build : KernelBuilds()) {
    g_kernelBuild = build;
    testing::internal::CaptureStdout();
    const Digests digests = RunCases(kLibrary);
    (void)testing::internal::GetCapturedStdout();
    EXPECT_EQ(SourceText(digests), SourceText(kExpected)) << "kernel build " << static_cast<int>(build);
  }
}

}  // namespace
}  // namespace itoftool::selftest
