// What the calibration commands find: mistakes by name, the reach of lenses, and the fates of pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>
#include <numeric>
#include <opencv2/calib3d.hpp>
#include <random>
#include <string>
#include <vector>

#include "alignment/approximatealignment.h"
#include "alignment/distortlut.h"
#include "alignment/farplane.h"
#include "check/findings.h"
#include "framesize.h"
#include "inspection/camerapair.h"
#include "inspection/comparison.h"
#include "inspection/pixeltrace.h"
#include "inspection/workingcontext.h"
#include "pixelwords.h"
#include "simulation/rig.h"
#include "support/calibrationbytes.h"
#include "support/mistakes.h"

namespace itoftool {
namespace {

using itof::CalibrationRecord;

std::vector<uint8_t> Bytes(const CalibrationRecord& record) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(&record);
  return {bytes, bytes + sizeof record};
}

std::vector<uint8_t> Bytes(const CalibrationFields& fields) {
  const std::string bytes = CalibrationBytes(fields);
  return {bytes.begin(), bytes.end()};
}

/// The findings as "error name: text", one a line.
std::string Describe(const std::vector<Finding>& findings) {
  std::string lines;
  for (const Finding& f : findings) {
    EXPECT_FALSE(f.advice.empty());
    lines += (f.severity == Severity::kError ? "error " : "warning ") + f.name + ": " + f.text + "\n";
  }
  return lines;
}

/// `names` are those of all findings, in order, e.g. "warning baseline"; `part` is in their text.
struct Expected {
  std::vector<std::string> names;
  std::string part;
};

void ExpectFindings(const std::vector<Finding>& findings, const Expected& expected) {
  const std::string text = Describe(findings);
  std::vector<std::string> names;
  for (const Finding& f : findings) names.push_back((f.severity == Severity::kError ? "error " : "warning ") + f.name);
  EXPECT_EQ(names, expected.names) << text;
  EXPECT_NE(text.find(expected.part), std::string::npos) << text;
}

/// What is found of each mistake, beyond what is found of the sound calibration; nothing for those that no one can see
/// in the file.
void ExpectMistakesNamed(const CalibrationRecord& sound, const std::map<std::string, Expected>& expected) {
  for (const Mistake& mistake : Mistakes()) {
    SCOPED_TRACE(mistake.name);
    CalibrationRecord broken = sound;
    mistake.make(broken);
    const auto found = expected.find(mistake.name);
    ExpectFindings(CheckCalibration(Bytes(broken)), found == expected.end() ? expected.at("") : found->second);
  }
}

TEST(CalibrationCheck, NamesMistakesInTheSimulatedPair) {
  ExpectMistakesNamed(
      simulation::GentleRig().record,
      {{"", {}},  // as the sound one
       {"translation in metres", {{"warning baseline"}, "0.02497 depth codes apart. In metres?"}},
       {"coefficients in the order k1 k2 k3 p1 p2",
        {{"warning tangential", "warning tangential", "warning undistortion"}, "k3 would be 0.09, p1 -0.0006"}},
       {"aux matrix of a 480-line image",
        {{"warning principal-point"}, "one of about 847 x 486 pixels, which has the same shape"}},
       {"aux matrix of the image before 60 of 480 rows were cut at either edge",
        {{"warning principal-point"},
         "The aux principal point (951.3, 725.8) lies 8.2 pixels left of and 186.3 pixels below"}},
       {"normalised matrices", {{"warning normalised", "warning normalised"}, "cx 0.504, cy 0.493"}},
       {"k set (-.35, .10, -.012) on a ToF lens used to 65 degrees",
        {{"error lens-range", "warning overlap"}, "ToF camera holds up to 60.9 degrees"}}});
}

TEST(CalibrationCheck, NamesMistakesInARealPair) {
  if (std::string(ITOF_REALDATA).empty()) GTEST_SKIP() << "ITOF_REALDATA is not set";
  CalibrationRecord sound;
  std::ifstream file(ITOF_REALDATA "/calibrations/camera_a.bin", std::ios::binary);
  ASSERT_TRUE(file.read(reinterpret_cast<char*>(&sound), sizeof sound));
  const std::string crop = "warning principal-point", corner = "warning undistortion";
  ExpectMistakesNamed(
      sound,
      // Its ToF frame is a crop, 60 rows off the axis, and its lens distorts the corners more than three rounds undo.
      {{"", {{crop, corner}, "13.3 pixels right of and 61.3 pixels below the middle"}},
       {"rotation transposed", {{crop, corner, "warning aim"}, "with the rotation transposed, or the pair inverted"}},
       {"extrinsics inverted", {{crop, corner, "warning aim"}, "with the rotation transposed, or the pair inverted"}},
       {"translation in metres", {{crop, corner, "warning baseline"}, "0.03239 depth codes apart. In metres?"}},
       {"coefficients in the order k1 k2 k3 p1 p2",
        {{crop, "error lens-range", "warning tangential", corner}, "k3 would be 1.454"}},
       {"aux matrix of a 480-line image",
        {{crop, crop, corner}, "one of about 853 x 488 pixels, which has the same shape"}},
       {"aux matrix of the image before 60 of 480 rows were cut at either edge",
        {{crop, crop, corner, "warning aim"}, "The aux principal point (319.4, 242.7) lies"}},
       {"ToF lens left out", {{crop}, ""}},
       {"lenses exchanged", {{crop}, ""}},
       {"normalised matrices", {{"warning normalised", "warning normalised"}, "cx 0.520, cy 0.669"}},
       {"k set (-.35, .10, -.012) on a ToF lens used to 65 degrees",
        {{crop, "error lens-range", "warning overlap"}, "ToF camera holds up to 60.9 degrees"}}});
}

TEST(CalibrationCheck, RefusesFilesThatAreNoGeometry) {
  const std::vector<uint8_t> good = Bytes(simulation::GentleRig().record);
  std::vector<uint8_t> longer = good, swapped = good, partly = good, erased(228, 0xFF);
  longer.push_back(7);
  for (size_t i = 0; i < good.size(); ++i) swapped[i] = good[i / 4 * 4 + 3 - i % 4];
  std::ranges::copy(std::span(swapped).subspan(8, 8), partly.begin() + 8);
  std::fill_n(erased.begin(), 120, uint8_t{0});
  std::fill_n(erased.begin(), 22, uint8_t{0x5A});
  ExpectFindings(CheckCalibration(good), {});
  ExpectFindings(CheckCalibration(std::span(good).first(227)), {{"error size"}, "holds 227 bytes"});
  ExpectFindings(CheckCalibration({}), {{"error size"}, "holds 0 bytes"});
  ExpectFindings(CheckCalibration(longer), {{"warning size"}, "holds 229 bytes"});
  ExpectFindings(CheckCalibration(erased), {{"error erased"}, "206 of the 228 bytes"});
  ExpectFindings(CheckCalibration(swapped), {{"error byte-order"}, "the whole file makes sense that way"});
  ExpectFindings(CheckCalibration(partly), {{"error byte-order"}, "640 with its bytes in the other order; 1 more"});

  for (const auto& [first, last] : {std::pair(2, 24), {27, 37}, {39, 54}}) {
    for (int field = first; field <= last; ++field) {
      CalibrationRecord record = simulation::GentleRig().record;
      const float nan = std::numeric_limits<float>::quiet_NaN();
      std::memcpy(reinterpret_cast<char*>(&record) + 4 * field, &nan, 4);
      ExpectFindings(CheckCalibration(Bytes(record)),
                     {{"error field"}, " at byte " + std::to_string(4 * field) + ": nan is not finite"});
    }
  }
  // Every field that the library refuses is named, not the first only.
  ExpectFindings(CheckCalibration(Bytes(IdentityCalibration({{4, 0}, {28, -1}}))),
                 {{"error field", "error field"}, "auxCalibHeight at byte 112: -1 is below 1 pixel"});
}

TEST(CalibrationCheck, JudgesGeometryByWhatItDoes) {
  struct Case {
    std::vector<std::pair<size_t, float>> changes;  // to two equal cameras 30 mm apart, of fields by number
    Expected expected;
  };
  const float c = std::cos(0.7F), s = std::sin(0.7F);
  const Case cases[] = {
      {{}, {}},
      {{{22, 0}}, {{"warning no-extrinsics"}, "42.7"}},  // 512 * 25 / 300
      {{{22, -0.03F}}, {{"warning baseline"}, "is 0.05 pixels; with the translation times 1000 it would be 51.2"}},
      {{{22, -3000}}, {{"warning baseline", "warning overlap"}, "With the translation divided by 1000, 99 %"}},
      {{{22, 5}, {24, 31}}, {{"warning axial-translation"}, "(5, 0, 31) is mostly along the optical axis"}},
      {{{14, 0.002F}}, {{"error rotation"}, "0.002 off the identity"}},
      {{{13, -1}}, {{"error mirror"}, "left and right"}},
      {{{4, 540}, {29, 502}}, {{"warning focal-lengths"}, "The ToF focal lengths are 540.0 and 512.0"}},
      {{{4, 540}, {8, 540}, {29, 502}, {33, 502}}, {}},
      // 640 x 480 with pixels that are square, and squashed as the library reads it.
      {{{28, 480}, {34, 239.5F}}, {{"warning aspect"}, "640 x 360 pixels from (0, 60) on"}},
      {{{28, 480}, {33, 682.667F}, {34, 239.5F}}, {}},
      {{{31, 375}}, {{"warning principal-point"}, "aux principal point (375.0, 180.0) lies 55.5 pixels right of"}},
      {{{35, 320}, {36, 180}, {31, 0}, {34, 0}},
       {{"warning matrix-form", "warning principal-point", "warning overlap"}, "the other reading is its transpose"}},
      {{{7, 9}}, {{"warning matrix-form"}, "[512, 0, 320; 9, 512, 180; 0, 0, 1]"}},
      {{{29, 100}, {33, 100}}, {{"warning field-of-view"}, "sees 145.3 degrees"}},
      // Turned about x by 40 degrees: nothing in common, and nothing better. The centre of the view leads elsewhere.
      {{{17, c}, {18, -s}, {20, s}, {21, c}}, {{"warning overlap"}, "No other reading"}},
      // The same while the ToF frame is cut so that only the transposed rotation sees it.
      {{{9, 620}, {17, c}, {18, -s}, {20, s}, {21, c}},
       {{"warning principal-point", "warning overlap", "warning aim"}, "With the rotation transposed, "}},
      // Coefficients of a real camera's size that only divide each other out.
      {{{39, 5}, {40, 8}, {43, 3}, {44, 5}, {45, 8}, {46, 3}, {47, 7}, {52, 7}}, {}},
      {{{47, -0.6F}}, {{"error lens-range"}, "aux camera holds up to 36.7 degrees off its axis, 254 pixels"}},
      {{{39, -0.7F}}, {{"error lens-range"}, "ToF camera holds up to 34.6 degrees off its axis, 236 pixels"}},
      {{{39, 0.9F}}, {{"warning undistortion"}, "at pixel (4, 4)"}},
  };
  for (const Case& item : cases) {
    CalibrationFields fields = IdentityCalibration({{22, -30}});
    for (const auto& [field, value] : item.changes) fields[field] = value;
    ExpectFindings(CheckCalibration(Bytes(fields)), item.expected);
  }
}

TEST(LensReach, EndsWhereTheModelFoldsOrBreaks) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const Lens none{}, barrel{-0.25, 0, 0, 0, 0, 0, 0, 0}, pole{1, 0, 0, -0.25, 0, 0, 0, 0};
  EXPECT_EQ(LensReach(none), kInfinity);
  EXPECT_NEAR(LensReach(barrel), std::sqrt(4.0 / 3), 1e-9);  // r - r^3 / 4 grows until there
  EXPECT_NEAR(LensReach(pole), std::sqrt(0.99 * 4), 1e-9);   // 1 - r^2 / 4 is 0.01 there
  EXPECT_EQ(LensReach({8, -2, 9, 8, -2, 9, 0, 0}), kInfinity);
}

TEST(PixelTrace, UndistortsAsOpenCvDoesInThreeRounds) {
  const simulation::Rig rig = simulation::StrongRig();
  const RunTables tables(rig.record, 1);
  const auto& [fx, fy, cx, cy, lens] = rig.tof;
  const auto& [k1, k2, k3, k4, k5, k6, p1, p2] = lens;
  const cv::Matx33d k(fx, 0, cx, 0, fy, cy, 0, 0, 1);
  for (const cv::Point pixel : {cv::Point(0, 0), cv::Point(639, 17), cv::Point(320, 200)}) {
    std::vector<cv::Point2d> from{pixel}, to;
    cv::undistortPoints(from, to, k, cv::Matx<double, 1, 8>(k1, k2, p1, p2, k3, k4, k5, k6), {}, k,
                        cv::TermCriteria(cv::TermCriteria::COUNT, 3, 0));
    EXPECT_LT(cv::norm(tables.Trace(pixel.x, pixel.y, 1000).undistorted - to[0]), 1e-4);
  }
}

TEST(PixelTrace, TellsWhereTheLibraryPutsEachPixel) {
  constexpr size_t kPixels = size_t{itof::kFrameWidth} * itof::kFrameHeight;
  constexpr uint16_t kUntouched = 0x0001;  // no working word has this bit
  CalibrationRecord record = simulation::StrongRig().record;
  record.auxDistortion[0] += 0.5F;  // positions near the edges leave the frame
  std::mt19937 random(1);
  std::vector<uint16_t> words(kPixels);
  for (uint16_t& word : words) word = static_cast<uint16_t>(random() % 7 == 0 ? 0xE000 : random() | 0x0100);
  for (const float ratio : {1.0F, 1.6F}) {
    const RunTables tables(record, ratio);
    const FrameFates frame = TraceFrame(tables, words);
    itof::AlignmentContext context = MakeWorkingContext(record);
    float* const farX = context.farPlaneMapX.get();
    float* const farY = context.farPlaneMapY.get();
    float* const lensX = context.distortMapX.get();
    float* const lensY = context.distortMapY.get();
    const auto scale = static_cast<double>(ratio);
    AlignmentFarPlane(context, farX, farY, scale, scale);
    DistortLUT(context, lensX, lensY);
    std::vector<uint16_t> cells(kPixels, kUntouched);
    RunApproximateAlignment(context, words.data(), cells.data(), farX, farY, lensX, lensY);
    size_t landed = 0, withDepth = 0;
    for (size_t i = 0; i < kPixels; ++i) {
      withDepth += itof::DepthCode(words[i]) != 0;
      if (frame.fates[i] != Fate::kLanded) continue;
      ++landed;
      const int x = static_cast<int>(i) % itof::kFrameWidth, y = static_cast<int>(i) / itof::kFrameWidth;
      const cv::Point target = tables.Trace(x, y, words[i]).target;
      ASSERT_EQ(cells[static_cast<size_t>(target.y * itof::kFrameWidth + target.x)], itof::WorkingWord(words[i]));
    }
    // Each cell was last written by a pixel that landed, by one without depth, or is the corner.
    const auto touched = kPixels - static_cast<size_t>(std::ranges::count(cells, kUntouched));
    const auto withoutDepth = static_cast<size_t>(std::count(cells.begin() + 1, cells.end(), 0xE000));
    EXPECT_EQ(touched, landed + withoutDepth + 1);
    const auto& counts = frame.counts.byFate;
    EXPECT_EQ(counts[static_cast<size_t>(Fate::kNoDepth)], kPixels - withDepth);
    EXPECT_EQ(std::accumulate(counts.begin(), counts.end(), size_t{0}), kPixels);
    for (const Fate fate : {Fate::kOverwritten, Fate::kOutsideGrid, Fate::kUnwrittenEntry}) {
      EXPECT_GT(counts[static_cast<size_t>(fate)], 0U) << kFateNames[static_cast<size_t>(fate)].text;
    }
  }
}

TEST(Comparison, MeasuresFromTheMiddlesOfCells) {
  // Equal cameras in one place: a pixel's exact position is the upper left corner of its cell.
  const CalibrationRecord same = itof::DecodeCalibrationRecord(CalibrationBytes(IdentityCalibration()).data());
  const Approximation here = MeasureApproximation(MakeCameraPair(same), RunTables(same, 1), 1000);
  EXPECT_EQ(here.error.count, size_t{640} * 360);
  EXPECT_NEAR(here.error.median, std::sqrt(0.5), 1e-9);
  EXPECT_NEAR(here.error.maximum, std::sqrt(0.5), 1e-9);

  // 25 mm to the left at 1 m: 12.8 pixels, rounded to 13 by the alignment.
  const CalibrationRecord apart =
      itof::DecodeCalibrationRecord(CalibrationBytes(IdentityCalibration({{22, -25}})).data());
  const Approximation there = MeasureApproximation(MakeCameraPair(apart), RunTables(apart, 1), 1000);
  EXPECT_EQ(there.belonging, size_t{627} * 360);
  EXPECT_EQ(there.lost, 0U);
  EXPECT_NEAR(there.error.median, std::hypot(0.5 - 0.2, 0.5), 1e-9);
  EXPECT_NEAR(Overlap(MakeCameraPair(apart), 1000), 627.0 / 640, 0.01);

  const auto pixels = TofPixels(1);
  const Spread moved = MeasureSpread(pixels, AlignedPositions(RunTables(same, 1), pixels, 1000),
                                     AlignedPositions(RunTables(apart, 1), pixels, 1000));
  EXPECT_NEAR(moved.median, 12.8, 1e-4);      // a float map's step at 640
  EXPECT_EQ(moved.count, size_t{628} * 360);  // -0.8 is rounded to 0
}

}  // namespace
}  // namespace itoftool
