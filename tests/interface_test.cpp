// Checks the three functions as a host sees them: results, state after failures, runs, log lines, allocations. CTest runs
// each case in a process of its own, where the library is freshly loaded.
#include "itofinterface.h"

#include <gtest/gtest.h>
#include <orvolog/orvolog.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "performancelog.h"
#include "support/calibrationbytes.h"
#include "support/recordingplatform.h"

namespace {

using Frame = std::vector<uint16_t>;
constexpr uint64_t kOurBit = uint64_t{1} << 18;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

/// This pair sees points of depth code 1024 `columns` further right in the aux view. Its aux_fl_ratio is `columns` too.
CalibrationFields ShiftedPair(float columns) { return IdentityCalibration({{22, 2 * columns}, {56, columns}}); }

Frame FrameOf(uint16_t word) { return Frame(640 * 360, word); }

size_t At(size_t column, size_t row) { return row * 640 + column; }

/// A frame of equal words, aligned by the library.
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
    if (HasFailure()) std::fputs(captured.c_str(), stdout);  // contains the failure's message
  }

  /// How far the library moves a pixel of depth code 1024 to the right, which shows the calibration that it uses. Expects
  /// the log to show the same calibration's aux_fl_ratio. In a run that begins with a ratio of 2, the pixel is dropped.
  static int PresentShift(float ratio = 1) {
    Frame frame = FrameOf(0);
    frame[At(400, 300)] = 1024;
    frame[At(401, 300)] = 1024;  // otherwise the zeros that follow replace the pixel
    g_platform.events.clear();
    g_enableOrvxLogs = kOurBit;
    itof_execute_algo(frame.data(), ratio);
    g_enableOrvxLogs = 0;
    const auto shift = std::ranges::find(frame, 1024 / 16) - frame.begin() - static_cast<ptrdiff_t>(At(400, 300));
    EXPECT_NE(g_platform.events.at(1).find(" is " + std::to_string(shift) + ".000000 ms"), std::string::npos);
    return static_cast<int>(shift);
  }
};

TEST_F(Interface, FramesBeforeASuccessfulInitStayAsTheyAre) {
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
  EXPECT_TRUE(g_platform.events.empty()) << "no time stamp and no line so far";
  EXPECT_EQ(Aligned(0x2345, 1), FrameOf(0x0134));
}

TEST_F(Interface, OnlyAUsableCalibrationReplacesTheOldOne) {
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
    for (const std::string& event : g_platform.events)
      EXPECT_EQ(event.find("FarPlane"), std::string::npos) << "new run";
  }
  g_platform = {.file = other + "what follows is ignored"};
  g_platform.opened.reserve(1);
  const long live = g_liveAllocations;
  for (int i = 0; i < 100; ++i, g_platform.opened.clear()) EXPECT_EQ(itof_init(), ITOF_OK);
  EXPECT_EQ(g_liveAllocations, live) << "each call frees what it replaces";
  EXPECT_EQ(g_platform.openStreams, 0);
  EXPECT_EQ(PresentShift(), 20);
}

TEST_F(Interface, TheFirstFrameOfARunDecidesTheRatio) {
  // Without parallax the ratio moves nothing, but it cuts the view: at 2 only the top-left quarter is inside.
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

TEST_F(Interface, TableEntriesOutliveTheirRun) {
  // At a ratio of 0.1 the entry of ideal cell (0, 0) is (4.5, 4.5). At 0 every pixel goes to that cell, and no entry is
  // written.
  ASSERT_EQ(itof_init(), ITOF_OK);
  Aligned(0x0010, 0.1F);
  itof_deinit();
  Frame expected = FrameOf(0);
  expected[At(4, 4)] = 1;
  EXPECT_EQ(Aligned(0x0010, 0), expected);
}

TEST_F(Interface, RatiosThatAreNotAboveZero) {
  // A ratio of r moves position p to r p + (r - 1) / 2: a negative one mirrors. Negative positions round toward zero.
  const struct {
    float ratio;
    CalibrationFields pair;
    size_t from, to;  // the only pixel that stays, and its cell
  } cases[] = {
      // -p - 1: only column 0 and row 0 stay. The entry of ideal cell (0, 0) would be (-1, -1), outside the frame, so it is
      // not written, and the pixel goes to (0, 0).
      {-1, IdentityCalibration(), At(0, 0), At(0, 0)},
      // -p / 2 - 3 / 4: columns and rows 0 and 1 gather in ideal cell (0, 0), and the last of the four pixels stays.
      {-0.5F, IdentityCalibration(), At(1, 1), At(0, 0)},
      // 2 - p: columns 0 to 3 come in, though the aux camera sees the first three beyond its left edge.
      {-1, ShiftedPair(-3), At(3, 0), At(0, 0)},
      // The lens brings (-1, -1) into the frame: r^2 is (321^2 + 181^2) / 512^2 = 0.518044 and 1 - r^2 / 2 = 0.740978, so
      // that 320 - 321 * 0.740978 = 82.1 and 180 - 181 * 0.740978 = 45.9.
      {-1, IdentityCalibration({{47, -0.5F}}), At(0, 0), At(82, 45)},
      // All pixels go to ideal cell (0, 0), and the last one stays.
      {0, IdentityCalibration(), At(639, 359), At(0, 0)},
      {kNan, IdentityCalibration(), At(639, 359), At(0, 0)},
      {std::numeric_limits<float>::infinity(), IdentityCalibration(), At(639, 359), At(0, 0)},
  };
  for (const auto& [ratio, pair, from, to] : cases) {
    g_platform.file = CalibrationBytes(pair);
    ASSERT_EQ(itof_init(), ITOF_OK);
    Frame frame = FrameOf(1024), expected = FrameOf(0);
    frame[from] = 1024 | 5 << 13;
    expected[to] = 1024 / 16 | 5 << 8;
    itof_execute_algo(frame.data(), ratio);
    EXPECT_TRUE(frame == expected) << "ratio " << ratio << ", cell " << to;
  }
}

TEST_F(Interface, PerformanceLinesOfAFirstAndALaterFrame) {
  const std::pair<std::string, std::string> lines[] = {
      {"307", "[Velmor_Perf] WarpTest algo !,aux_fl_ratio is 1.500000 ms"},
      {"322", "[Velmor_Perf] AlignmentFarPlane ! used time is 3 ms"},
      {"328", "[Velmor_Perf] DistortLUT ! used time is 5 ms"},
      {"341", "[Velmor_Perf] RunApproximateAlignment ! used time is 7 ms"},
      {"364", "[Velmor_Perf] WarpTest algo !, total used time is 1000 ms"}};
  // The total spans the wrap of the 32-bit count of milliseconds, at 4294967.296 s. Milliseconds are cut before they are
  // subtracted, so the step from 999,999 ns to 3,000,000 ns takes 3 ms.
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
      Frame frame = FrameOf(0x2345);
      std::vector<uint16_t> words;  // of the frame, at each stamp
      g_platform.atStamp = [&] { words.push_back(frame.back()); };
      itof_execute_algo(frame.data(), 1);
      g_platform.atStamp = [] {};
      std::vector<uint16_t> expectedWords(first ? 8 : 4, 0x2345);
      expectedWords.back() = 0x0134;
      EXPECT_EQ(words, expectedWords) << "the aligned frame is copied back before the last stamp";
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

TEST_F(Interface, FramesMayStartAtAnyWord) {
  g_platform.file = CalibrationBytes(ShiftedPair(10));
  ASSERT_EQ(itof_init(), ITOF_OK);
  Frame frame = FrameOf(0);
  for (size_t i = 0; i < frame.size(); ++i) frame[i] = static_cast<uint16_t>(i * 40503 >> 7);
  Frame expected = frame;
  itof_execute_algo(expected.data(), 1);
  for (const ptrdiff_t offset : {1, 7}) {
    Frame buffer(frame.size() + 16, 0xABCD), expectedBuffer = buffer;
    std::ranges::copy(frame, buffer.begin() + offset);
    std::ranges::copy(expected, expectedBuffer.begin() + offset);
    itof_execute_algo(buffer.data() + offset, 1);
    EXPECT_TRUE(buffer == expectedBuffer) << "at word " << offset;
  }
}

TEST_F(Interface, FailedAllocationsChangeNothing) {
  g_platform.file = CalibrationBytes(ShiftedPair(10));
  Frame frame = FrameOf(0x2345);
  // The first allocation of the first itof_init fails, then the second, and so on until it succeeds.
  int failures = 0;
  for (; !Succeeds(failures, itof_init); ++failures) {
    EXPECT_EQ(itof_execute_algo(frame.data(), 1), 0);
    EXPECT_EQ(frame, FrameOf(0x2345)) << "after failure " << failures;
  }
  EXPECT_GT(failures, 0) << "run this test alone in its process, as CTest does";
  EXPECT_TRUE(g_platform.events.empty());
  EXPECT_FALSE(Succeeds(0, [&] { itof_execute_algo(frame.data(), 1); })) << "the first frame of a process allocates";
  EXPECT_EQ(frame, FrameOf(0x2345));

  ASSERT_EQ(PresentShift(), 10);
  g_platform.file = CalibrationBytes(ShiftedPair(20));
  for (failures = 0;; ++failures) {
    ASSERT_EQ(PresentShift(2), 10) << "the run of ratio 1 goes on";
    g_platform.opened.clear();
    g_platform.events.clear();
    const long live = g_liveAllocations;
    const bool succeeds = Succeeds(failures, itof_init);
    g_platform.opened.clear();
    EXPECT_EQ(g_platform.openStreams, 0);
    if (succeeds) break;
    EXPECT_EQ(g_liveAllocations, live) << "after failure " << failures;
  }
  EXPECT_GT(failures, 0);
  EXPECT_EQ(PresentShift(), 20);

  g_platform.events.reserve(100);
  const long live = g_liveAllocations;
  for (int run = 0; run < 2; ++run, itof_deinit()) {
    EXPECT_TRUE(Succeeds(0, [&] { itof_execute_algo(frame.data(), 1); }));
  }
  EXPECT_EQ(g_liveAllocations, live) << "later frames allocate nothing, also the first of a run";
}

}  // namespace
