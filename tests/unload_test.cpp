// Checks that the finished library, loaded and unloaded by a host, frees all its memory.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <opencv2/core.hpp>
#include <vector>

#include "itofinterface.h"
#include "support/calibrationbytes.h"
#include "support/recordingplatform.h"

// The platform's globals in this program replace those of the loaded libraries, on purpose.
extern "C" const char* __asan_default_options() { return "detect_odr_violation=0"; }

namespace {

TEST(Unloading, FreesAllMemory) {
  (void)cv::getVersionString();  // keeps OpenCV loaded; its own memory does not count
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
    EXPECT_FALSE(g_platform.events.empty()) << "the library must use this program's platform";
    g_platform.opened.clear();
    g_platform.events.clear();
    EXPECT_GT(g_liveAllocations, live) << "the library must use this program's allocator";
    EXPECT_EQ(dlclose(library), 0);
    EXPECT_EQ(dlopen(ITOF_LIBRARY_PATH, RTLD_NOW | RTLD_NOLOAD), nullptr);
    EXPECT_EQ(g_liveAllocations, live);
  }
}

}  // namespace
