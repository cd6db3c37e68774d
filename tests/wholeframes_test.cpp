// Compares whole frames through the three public functions with the plain form, word for word, also if the host has
// changed its floating-point environment.
#include <gtest/gtest.h>
#include <zerun/hostfiles.h>

#include <cfenv>
#include <cstdint>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "calibration/alignmentparams.h"
#include "itofinterface.h"
#include "plain/plainframe.h"
#include "plain/plainsteps.h"
#include "simulation/rig.h"
#include "support/initlibrary.h"

namespace {

using namespace itoftool::simulation;

TEST(WholeFrames, EqualTheirPlainForm) {
  std::mt19937 random(1);
  for (const Rig& rig : {GentleRig(), StrongRig()}) {
    InitLibrary(rig.record);
    itof::AlignmentContext context{};
    plain::InitAlignmentContext(context, itof::WorkingParams(rig.record), 1);
    for (const float ratio : {1.0F, 2.0F, 0.75F}) {
      itof_deinit();
      for (int frame = 0; frame < 3; ++frame) {
        std::vector<uint16_t> words(kWidth * kHeight);
        for (uint16_t& word : words) word = static_cast<uint16_t>(random() >> (frame == 1 ? random() % 14 : 0));
        std::vector<uint16_t> expected = words;
        plain::AlignFrame(context, expected.data(), frame == 0, ratio);
        itof_execute_algo(words.data(), ratio);
        EXPECT_TRUE(words == expected) << "ratio " << ratio << ", frame " << frame;
      }
    }
  }
}

/// What belongs to a floating-point environment: rounding, traps, flushing, flags.
std::vector<uint32_t> Registers(const std::fenv_t& environment) {
#ifdef __x86_64__
  return {environment.__mxcsr, environment.__control_word, environment.__status_word};
#else
  return {environment.__fpcr, environment.__fpsr};
#endif
}

std::fenv_t PresentEnvironment() {
  std::fenv_t present;
  std::fegetenv(&present);
  return present;
}

bool FlushToZero() {
  std::fenv_t environment = PresentEnvironment();
#ifdef __x86_64__
  environment.__mxcsr |= 0x8040;  // results and operands
#else
  environment.__fpcr |= 1U << 24;
#endif
  std::fesetenv(&environment);
  const volatile float smallest = std::numeric_limits<float>::denorm_min();
  return smallest == 0;
}

/// A setting of the host. `set` returns false if the machine does not have it.
struct Setting {
  const char* name;
  bool (*set)();

  friend void PrintTo(const Setting& setting, std::ostream* stream) { *stream << setting.name; }
};

class HostsFloatEnvironment : public testing::TestWithParam<Setting> {};

TEST_P(HostsFloatEnvironment, ChangesNothingAndIsLeftAlone) {
  Rig denormal = GentleRig();
  denormal.record.tofIntrinsics[0] = std::numeric_limits<float>::denorm_min();  // a usable focal length
  std::mt19937 random(1);
  for (const Rig& rig : {GentleRig(), StrongRig(), denormal}) {
    std::vector<uint16_t> words(kWidth * kHeight);
    for (uint16_t& word : words) word = static_cast<uint16_t>(random() >> random() % 14);
    std::vector<uint16_t> expected = words;
    itof::AlignmentContext context{};
    plain::InitAlignmentContext(context, itof::WorkingParams(rig.record), 1);
    plain::AlignFrame(context, expected.data(), true, 0.75F);

    const ZerunHost::ServedFile file(itof::kCalibrationPath,
                                     {reinterpret_cast<const char*>(&rig.record), sizeof rig.record});
    const std::fenv_t own = PresentEnvironment();
    const bool canSet = GetParam().set();
    // No arithmetic and no check until the test's own environment is back: anything might trap.
    std::feclearexcept(FE_ALL_EXCEPT);
    if (fegetexcept() == 0) std::feraiseexcept(FE_DIVBYZERO);
    std::fenv_t environments[4] = {PresentEnvironment()};
    int32_t result = -1;
    if (canSet) {
      result = itof_init();
      environments[1] = PresentEnvironment();
      itof_execute_algo(words.data(), 0.75F);
      environments[2] = PresentEnvironment();
      itof_deinit();
      environments[3] = PresentEnvironment();
    }
    std::fesetenv(&own);
    if (!canSet) GTEST_SKIP() << "the machine does not have this setting";

    EXPECT_EQ(result, ITOF_OK);
    EXPECT_TRUE(words == expected);
    for (const std::fenv_t& environment : environments) EXPECT_EQ(Registers(environment), Registers(environments[0]));
  }
}

INSTANTIATE_TEST_SUITE_P(WholeFrames, HostsFloatEnvironment,
                         testing::Values(Setting{"RoundsUp", [] { return std::fesetround(FE_UPWARD) == 0; }},
                                         Setting{"RoundsDown", [] { return std::fesetround(FE_DOWNWARD) == 0; }},
                                         Setting{"RoundsTowardZero",
                                                 [] { return std::fesetround(FE_TOWARDZERO) == 0; }},
                                         Setting{"TrapsEverything", [] { return feenableexcept(FE_ALL_EXCEPT) != -1; }},
                                         Setting{"FlushesToZero", FlushToZero}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
