// Compares whole frames through the three public functions with the plain form, word for word.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
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

}  // namespace
