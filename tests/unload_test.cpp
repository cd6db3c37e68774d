// The library as a host loads it, and lets it go again.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <opencv2/core.hpp>
#include <vector>

#include "itofinterface.h"
#include "support/calibrationbytes.h"
#include "support/recordingplatform.h"

// This program has the platform's globals in place of those of the libraries that are loaded beside it, on purpose.
extern "C" const char* __asan_default_options() { return "detect_odr_violation=0"; }

namespace {

TEST(Unloading, GivesBackAllMemory) {
  (void)cv::getVersionString();  // keeps OpenCV loaded, whose own memory is not looked at
  std::vector<uint16_t> frame(size_t{ITOF_FRAME_WIDTH} * ITOF_FRAME_HEIGHT);
  for (int round = 0; round < 3; ++round) {
    g_platform = {.file = CalibrationBytes(IdentityCalibration())};
    g_platform.opened.reserve(1);
    g_platform.events.reserve(100);
    const long live = g_liveAllocations;
    void* library = dlopen(ITOF_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto init = reinterpret_cast<decltype(&itof_init)>(dlsym(library, "itof_init"));
    const auto align = reinterpret_cast<decltype(&itof_execute_algo)>(dlsym(library, "itof_execute_algo"));
    EXPECT_EQ(init(), ITOF_OK);
    align(frame.data(), 1);
    EXPECT_EQ(g_platform.events.size(), 8U) << "the library uses this program's platform";
    g_platform.opened.clear();
    g_platform.events.clear();
    EXPECT_GT(g_liveAllocations, live) << "and its allocator";
    EXPECT_EQ(dlclose(library), 0);
    EXPECT_EQ(dlopen(ITOF_LIBRARY_PATH, RTLD_NOW | RTLD_NOLOAD), nullptr);
    EXPECT_EQ(g_liveAllocations, live);
  }
}

}  // namespace
