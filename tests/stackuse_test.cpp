// Measures how much stack the finished library's functions use, against the figures in itofinterface.h.
#include <gtest/gtest.h>
#include <orvolog/orvolog.h>
#include <pthread.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "itofinterface.h"
#include "simulation/rig.h"
#include "support/initlibrary.h"

namespace {

constexpr std::byte kUntouched{0x5A};
alignas(4096) std::byte g_stack[256 * 1024];
size_t g_used;

void* CallAndMeasure(void*) {
  static std::vector<uint16_t> frame(size_t{ITOF_FRAME_WIDTH} * ITOF_FRAME_HEIGHT);
  InitLibrary(itoftool::simulation::StrongRig().record);
  for (int i = 0; i < 2; ++i) itof_execute_algo(frame.data(), 1);
  itof_deinit();
  const auto* lowest = std::ranges::find_if(g_stack, [](std::byte b) { return b != kUntouched; });
  g_used = static_cast<size_t>(static_cast<const std::byte*>(__builtin_frame_address(0)) - lowest);
  return nullptr;
}

/// Bytes of stack that a call of each function uses, on a thread with a stack of known content.
size_t StackUse() {
  std::ranges::fill(g_stack, kUntouched);
  pthread_attr_t attributes;
  pthread_t thread;
  pthread_attr_init(&attributes);
  EXPECT_EQ(pthread_attr_setstack(&attributes, g_stack, sizeof g_stack), 0);
  EXPECT_EQ(pthread_create(&thread, &attributes, CallAndMeasure, nullptr), 0);
  EXPECT_EQ(pthread_join(thread, nullptr), 0);
  return g_used;
}

TEST(StackUse, IsAtMostWhatTheHeaderSays) {
  EXPECT_LE(StackUse(), size_t{16 * 1024});
  g_enableOrvxLogs = ~uint64_t{0};
  g_enableSystemLog = 1;
  EXPECT_LE(StackUse(), size_t{20 * 1024}) << "with the lines of the host's stand-ins";
}

}  // namespace
