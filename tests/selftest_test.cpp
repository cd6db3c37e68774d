// The self-test's expected digests against those of the plain form, which they come from, and each build of the kernels
// against them.
#include "selftest/selftest.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "plain/plainsteps.h"
#include "selftest/digest.h"
#include "support/kernelbuildchoice.h"

namespace itoftool::selftest {
namespace {

/// As they stand in expected.cpp.
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

TEST(SelfTest, DigestIsFnv1a) {
  Digest digest;
  for (const char c : std::string_view("foobar")) digest.Add(static_cast<uint8_t>(c));
  EXPECT_EQ(digest.Value(), 0x85944171F73967E8) << "from the test vectors of FNV's authors";
}

}  // namespace
}  // namespace itoftool::selftest
