// The three functions as a host sees them: results, state after failures, runs, log lines, allocations. CTest runs each
// case in a process of its own, in which the library is as loaded.
#include "itofinterface.h"

#include <gtest/gtest.h>
#include <orvolog/orvolog.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "performancelog.h"
#include "support/calibrationbytes.h"
#include "support/recordingplatform.h"

namespace {

using Frame = std::vector<uint16_t>;
constexpr uint64_t kOurBit = uint64_t{1} << 18;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

/// At a depth code of 1024 this pair sees points `columns` further right in the aux view; its ratio is as much.
CalibrationFields ShiftedPair(float columns) { return IdentityCalibration({{22, 2 * columns}, {56, columns}}); }

Frame FrameOf(uint16_t word) { return Frame(640 * 360, word); }

size_t At(size_t column, size_t row) { return row * 640 + column; }

/// A frame of equal words after it went through the library.
Frame Aligned(uint16_t word, float ratio) {
  Frame frame = FrameOf(word);
  EXPECT_EQ(itof_execute_algo(frame.data(), ratio), 0);
  return frame;
}

class Interface : public testing::Test {
 protected:
  void SetUp() override {
    g_platform = {.file = CalibrationBytes(IdentityCalibration())};
    g_enableOrvxLogs = 0;
    g_enableSystemLog = 0;
    testing::internal::CaptureStdout();
  }
  void TearDown() override {
    const std::string captured = testing::internal::GetCapturedStdout();
    if (HasFailure()) std::fputs(captured.c_str(), stdout);  // what failed is told on the same stream
  }

  /// How far the library in its present state moves a pixel of depth code 1024: the proof of which calibration it has.
  /// The ratio in its log must be of the same.
  static int PresentShift() {
    Frame frame = FrameOf(0);
    frame[At(100, 100)] = 1024;
    frame[At(101, 100)] = 1024;  // else the zeros that follow replace the pixel
    g_platform.events.clear();
    g_enableOrvxLogs = kOurBit;
    itof_execute_algo(frame.data(), 1);
    g_enableOrvxLogs = 0;
    const auto shift = std::ranges::find(frame, 1024 / 16) - frame.begin() - static_cast<ptrdiff_t>(At(100, 100));
    EXPECT_NE(g_platform.events.at(1).find(" is " + std::to_string(shift) + ".000000 ms"), std::string::npos);
    return static_cast<int>(shift);
  }
};

TEST_F(Interface, BeforeASuccessfulInitFramesAreRefusedInSilence) {
  g_enableOrvxLogs = ~uint64_t{0};
  g_enableSystemLog = 1;
  EXPECT_EQ(Aligned(0x2345, 1), FrameOf(0x2345));
  itof_deinit();
  g_platform.file.reset();
  EXPECT_EQ(itof_init(), ITOF_CALIBRATION_UNREADABLE);
  EXPECT_EQ(Aligned(0x2345, 1), FrameOf(0x2345));
  g_platform.file = CalibrationBytes(IdentityCalibration({{21, kNan}}));
  EXPECT_EQ(itof_init(), ITOF_CALIBRATION_UNUSABLE);
  EXPECT_EQ(Aligned(0x2345, 1), FrameOf(0x2345));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  testing::internal::CaptureStdout();

  g_platform.file = CalibrationBytes(IdentityCalibration());
  EXPECT_EQ(itof_init(), ITOF_OK);
  EXPECT_TRUE(g_platform.events.empty()) << "no stamp, no line until here";
  EXPECT_EQ(Aligned(0x2345, 1), FrameOf(0x0134));
}

TEST_F(Interface, OnlyGoodCalibrationsTakeTheOldOnesPlace) {
  g_platform.file = CalibrationBytes(ShiftedPair(10));
  ASSERT_EQ(itof_init(), ITOF_OK);
  ASSERT_EQ(PresentShift(), 10);

  const std::string other = CalibrationBytes(ShiftedPair(20));
  struct Case {
    std::optional<std::string> file;
    std::optional<size_t> readFailsAt;
    int32_t result;
  };
  const Case cases[] = {
      {std::nullopt, {}, ITOF_CALIBRATION_UNREADABLE},
      {other, 0, ITOF_CALIBRATION_UNREADABLE},
      {other, 227, ITOF_CALIBRATION_UNREADABLE},
      {other.substr(0, 227), {}, ITOF_CALIBRATION_SHORT},
      {"", {}, ITOF_CALIBRATION_SHORT},
      {CalibrationBytes(IdentityCalibration({{2, 512}})), {}, ITOF_CALIBRATION_UNUSABLE},
      {CalibrationBytes(IdentityCalibration({{33, 0}})), {}, ITOF_CALIBRATION_UNUSABLE},
      {CalibrationBytes(IdentityCalibration({{54, kNan}})), {}, ITOF_CALIBRATION_UNUSABLE},
  };
  for (const Case& c : cases) {
    g_platform = {.file = c.file, .readFailsAt = c.readFailsAt};
    EXPECT_EQ(itof_init(), c.result);
    EXPECT_TRUE(g_platform.events.empty());
    EXPECT_EQ(g_platform.opened, std::vector<std::string>{"/vendor/lib64/camera/new_otp_simple.bin rb"});
    EXPECT_EQ(g_platform.openStreams, 0);
    EXPECT_EQ(PresentShift(), 10);
    EXPECT_EQ(g_platform.events.size(), 7U) << "four stamps and three lines: the tables were not built anew";
  }
  g_platform = {.file = other + "what follows is ignored"};
  g_platform.opened.reserve(1);
  const long live = g_liveAllocations;
  for (int i = 0; i < 100; ++i, g_platform.opened.clear()) EXPECT_EQ(itof_init(), ITOF_OK);
  EXPECT_EQ(g_liveAllocations, live) << "each gives back what it replaces";
  EXPECT_EQ(g_platform.openStreams, 0);
  EXPECT_EQ(PresentShift(), 20);
}

TEST_F(Interface, TheFirstFrameOfARunDecidesTheRatio) {
  // Without parallax a ratio moves nothing, but cuts the view: at 2 only the top-left quarter of positions is inside.
  Frame quarter = FrameOf(0);
  for (size_t row = 0; row < 180; ++row) std::fill_n(quarter.begin() + static_cast<ptrdiff_t>(row) * 640, 320, 1);
  ASSERT_EQ(itof_init(), ITOF_OK);
  EXPECT_EQ(Aligned(0x0010, 1), FrameOf(1));
  EXPECT_EQ(Aligned(0x0010, 2), FrameOf(1));
  itof_deinit();
  itof_deinit();
  EXPECT_EQ(Aligned(0x0010, 2), quarter);
  EXPECT_EQ(Aligned(0x0010, 1), quarter);
  ASSERT_EQ(itof_init(), ITOF_OK);
  EXPECT_EQ(Aligned(0x0010, 1), FrameOf(1));
}

TEST_F(Interface, TableEntriesOfAnEarlierRunRemainUntilInit) {
  // At a ratio of 0.1 the entry of ideal position (0, 0) is (4.5, 4.5); a ratio that is no number sends every pixel to
  // that position, and writes no entry.
  for (const float ratio : {kNan, 0.0F, std::numeric_limits<float>::infinity()}) {
    for (const bool init : {false, true}) {
      ASSERT_EQ(itof_init(), ITOF_OK);
      Aligned(0x0010, 0.1F);
      itof_deinit();
      if (init) itof_init();
      Frame expected = FrameOf(0);
      expected[init ? At(0, 0) : At(4, 4)] = 1;
      EXPECT_EQ(Aligned(0x0010, ratio), expected) << ratio;
    }
  }
}

TEST_F(Interface, PerformanceLinesOfAFirstAndALaterFrame) {
  const std::pair<std::string, std::string> lines[] = {
      {"307", "[Velmor_Perf] WarpTest algo !,aux_fl_ratio is 1.500000 ms"},
      {"322", "[Velmor_Perf] AlignmentFarPlane ! used time is 3 ms"},
      {"328", "[Velmor_Perf] DistortLUT ! used time is 5 ms"},
      {"341", "[Velmor_Perf] RunApproximateAlignment ! used time is 7 ms"},
      {"364", "[Velmor_Perf] WarpTest algo !, total used time is 1000 ms"}};
  // 2^32 milliseconds are 4294967.296 s: the total spans the wrap of the 32-bit count. Milliseconds are cut before they
  // are subtracted, so 999,999 ns to 3,000,000 ns are 3 ms.
  const std::deque<ZerunTime> stamps = {{4294966, 500'999'999}, {1, 999'999}, {1, 3'000'000}, {5, 999'999'999},
                                        {6, 4'000'000},         {9, 0},       {9, 7'999'999}, {4294967, 500'000'000}};
  const struct {
    uint64_t mask;
    int systemLog;
    bool orvo, android;
  } cases[] = {{~kOurBit, 1, false, false}, {kOurBit, 2, true, false}, {kOurBit, 1, true, true}};
  for (const auto& c : cases) {
    g_platform = {.file = CalibrationBytes(IdentityCalibration({{56, 1.5F}}))};
    ASSERT_EQ(itof_init(), ITOF_OK);
    g_enableOrvxLogs = c.mask;
    g_enableSystemLog = c.systemLog;
    for (const bool first : {true, false}) {
      g_platform.events.clear();
      g_platform.stamps = stamps;
      if (!first) g_platform.stamps.erase(g_platform.stamps.begin() + 1, g_platform.stamps.begin() + 5);
      Aligned(0, 1);
      const std::string android = "android: 6 OrvoX [ERROR][UNKNOWN] itofinterface.cpp:";
      const std::string orvo = "orvo: [ERROR] E [UNKNOWN] itofinterface.cpp itof_execute_algo ";
      std::vector<std::string> expected;
      for (const auto& [number, text] : lines) {
        if (!first && (number == "322" || number == "328")) continue;
        expected.insert(expected.end(), number == "307" || number == "364" ? 1 : 2, "clock");
        if (c.android) expected.push_back(android + number + " itof_execute_algo() " + text + "\n");
        if (c.orvo) expected.push_back(orvo + number + " " + text);
      }
      EXPECT_EQ(g_platform.events, expected) << "mask " << c.mask << ", system log " << c.systemLog;
    }
    g_enableOrvxLogs = 0;
  }
  EXPECT_STREQ(itof::BaseName("itofinterface.cpp"), "itofinterface.cpp") << "compiled in its own folder";
}

TEST_F(Interface, FramesLieWhereverAWordCan) {
  g_platform.file = CalibrationBytes(ShiftedPair(10));
  ASSERT_EQ(itof_init(), ITOF_OK);
  Frame frame = FrameOf(0);
  for (size_t i = 0; i < frame.size(); ++i) frame[i] = static_cast<uint16_t>(i * 40503 >> 7);
  Frame expected = frame;
  itof_execute_algo(expected.data(), 1);

  // Pages that may be used between two that may not.
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  const size_t bytes = frame.size() * sizeof frame[0];
  const size_t usable = (bytes / page + 1) * page;
  void* pages = mmap(nullptr, usable + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(pages, MAP_FAILED);
  char* first = static_cast<char*>(pages) + page;
  ASSERT_EQ(mprotect(first, usable, PROT_READ | PROT_WRITE), 0);
  for (const size_t offset : {size_t{0}, size_t{2}, usable - bytes - 2, usable - bytes}) {
    auto* words = reinterpret_cast<uint16_t*>(first + offset);
    std::ranges::copy(frame, words);
    itof_execute_algo(words, 1);
    EXPECT_TRUE(std::ranges::equal(expected, std::span(words, frame.size()))) << "at byte " << offset;
  }
  munmap(pages, usable + 2 * page);
}

TEST_F(Interface, FailedAllocationsChangeNothing) {
  g_platform.file = CalibrationBytes(ShiftedPair(10));
  ASSERT_EQ(itof_init(), ITOF_OK);
  Frame frame = FrameOf(0x2345);
  EXPECT_FALSE(Succeeds(0, [&] { itof_execute_algo(frame.data(), 1); }))
      << "the first frame of a process needs memory; is this test alone in its process, as CTest runs it?";
  EXPECT_EQ(frame, FrameOf(0x2345));

  g_platform.file = CalibrationBytes(ShiftedPair(20));
  int failures = 0;
  for (;; ++failures) {  // the first allocation of a call, the second, and so on until it succeeds
    ASSERT_EQ(PresentShift(), 10);
    g_platform.opened.clear();
    g_platform.events.clear();
    const long live = g_liveAllocations;
    const bool succeeds = Succeeds(failures, itof_init);
    g_platform.opened.clear();
    EXPECT_EQ(g_platform.openStreams, 0);
    if (succeeds) break;
    EXPECT_EQ(g_liveAllocations, live) << "after failure " << failures;
  }
  EXPECT_EQ(failures, 7);  // the record and six buffers
  EXPECT_EQ(PresentShift(), 20);

  g_platform.events.reserve(100);
  const long live = g_liveAllocations;
  for (int run = 0; run < 2; ++run, itof_deinit()) {
    EXPECT_TRUE(Succeeds(0, [&] { itof_execute_algo(frame.data(), 1); }));
  }
  EXPECT_EQ(g_liveAllocations, live) << "later frames need no memory, whether they begin a run or not";
}

}  // namespace
