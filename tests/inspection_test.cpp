// Checks what the calibration commands find: mistakes by name, the reach of lenses, and what happens to each pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <numeric>
#include <opencv2/calib3d.hpp>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "check/findings.h"
#include "check/findingsjson.h"
#include "check/reference.h"
#include "framesize.h"
#include "inspection/pixeltrace.h"
#include "itofinterface.h"
#include "pixelwords.h"
#include "simulation/rig.h"
#include "support/calibrationbytes.h"
#include "support/initlibrary.h"
#include "support/mistakes.h"
#include "support/verdict.h"

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
    lines += std::string(SeverityName(f.severity)) + " " + f.name + ": " + f.text + "\n";
  }
  return lines;
}

/// The names of all findings in order, e.g. "warning baseline", and a part of their text.
struct Expected {
  std::vector<std::string> names;
  std::string part;
};

void ExpectFindings(const std::vector<Finding>& findings, const Expected& expected) {
  const std::string text = Describe(findings);
  std::vector<std::string> names;
  for (const Finding& f : findings) names.push_back(std::string(SeverityName(f.severity)) + " " + f.name);
  EXPECT_EQ(names, expected.names) << text;
  EXPECT_NE(text.find(expected.part), std::string::npos) << text;
}

/// Expects that every mistake but `unseen` is named, and that nothing is said about those.
void ExpectMistakesNamed(const CalibrationRecord& sound, const std::set<std::string>& unseen) {
  for (const Mistake& mistake : Mistakes()) {
    const Verdict expected = unseen.contains(mistake.name) ? Verdict::kNothing : Verdict::kNamed;
    EXPECT_EQ(VerdictOn(mistake, sound), expected) << mistake.name;
  }
}

/// Mistakes after which the file is as sound as before.
const std::set<std::string> kUnseen = {"translation sign flipped",
                                       "position of the aux camera as translation",
                                       "both cameras' y and z axes flipped",
                                       "aux focal lengths 1 % too large",
                                       "ToF lens left out",
                                       "aux lens left out",
                                       "lenses exchanged",
                                       "p1 and p2 of the aux lens exchanged"};

TEST(CalibrationCheck, NamesMistakesInTheSimulatedPair) {
  std::set<std::string> unseen = kUnseen;
  unseen.insert({"rotation transposed", "extrinsics inverted"});  // by 0.7 degrees
  ExpectMistakesNamed(simulation::GentleRig().record, unseen);
}

TEST(CalibrationCheck, NamesMistakesInARealPair) {
  if (std::string(ITOF_REALDATA).empty()) GTEST_SKIP() << "ITOF_REALDATA is not set";
  CalibrationRecord sound;
  std::ifstream file(ITOF_REALDATA "/calibrations/camera_a.bin", std::ios::binary);
  ASSERT_TRUE(file.read(reinterpret_cast<char*>(&sound), sizeof sound));
  // The ToF frame is a crop, 60 rows off the axis. Its lens distorts the corners more than three rounds undo.
  ExpectFindings(CheckCalibration(Bytes(sound)),
                 {{"warning principal-point", "note undistortion"}, "13.3 pixels right of and 61.3 pixels below"});
  std::set<std::string> unseen = kUnseen;
  unseen.insert("aux focal lengths of half the resolution");  // a field of view of 128 degrees
  ExpectMistakesNamed(sound, unseen);
}

TEST(CalibrationCheck, NamesUnseenMistakesAgainstAReference) {
  const CalibrationRecord good = simulation::GentleRig().record;
  CalibrationRecord unit = good;
  unit.auxIntrinsics[2] += 9;  // 3 pixels in the frame
  unit.translation[1] += 0.4F;
  ExpectFindings(CheckAgainst(good, unit), {{"note reference"}, "reference: 3."});
  for (const Mistake& mistake : Mistakes()) {
    if (mistake.reading.empty() || mistake.name.find("exchanged") != std::string::npos)
      continue;  // the latter move few pixels
    if (!kUnseen.contains(mistake.name) && !mistake.name.starts_with("rotation transposed")) continue;
    CalibrationRecord broken = unit;
    mistake.make(broken);
    const Finding finding = CheckAgainst(good, broken).back();
    EXPECT_EQ(finding.severity, Severity::kWarning);
    EXPECT_EQ(std::ranges::count(finding.readings, mistake.reading, &OtherReading::name), 1)
        << mistake.name << ": " << finding.text;
  }
  // Other mistakes, however large, are not given the name of a reading.
  CalibrationRecord shifted = unit, turned = unit;
  shifted.tofIntrinsics[2] -= 900;
  const float c = std::cos(1.0F), s = std::sin(1.0F);
  const float about[] = {c, 0, s, 0, 1, 0, -s, 0, c};
  std::ranges::copy(about, turned.rotation);
  for (const CalibrationRecord& broken : {shifted, turned}) {
    const Finding finding = CheckAgainst(good, broken).back();
    EXPECT_TRUE(finding.severity == Severity::kWarning && finding.readings.empty()) << finding.text;
  }
  // What the good unit has too is not repeated.
  CalibrationRecord crop = good;
  crop.tofIntrinsics[2] += 70;
  ExpectFindings(CheckAgainst(crop, crop), {{"note reference"}, "0.0 pixels at 0.3 m (at most 0.0)"});
}

TEST(CalibrationCheck, LeavesASoundPairAlone) {
  // The aux camera is 38 mm above the ToF camera and turned about the axis. Both lenses have five coefficients.
  const float c = std::cos(0.02F), s = std::sin(0.02F);
  const CalibrationFields pair = IdentityCalibration(
      {{4, 431.7F},  {6, 325.1F},  {8, 430.9F},  {9, 172.6F},   {13, c},       {14, -s},      {16, s},
       {17, c},      {22, 2.5F},   {23, 38},     {24, -1.5F},   {27, 1280},    {28, 720},     {29, 905.5F},
       {31, 645.1F}, {33, 903.2F}, {34, 352.4F}, {39, 0.12F},   {40, -0.2F},   {41, 0.0004F}, {42, -0.0006F},
       {43, 0.07F},  {47, -0.06F}, {48, 0.04F},  {49, 0.0003F}, {50, 0.0005F}, {51, -0.01F}});
  ExpectFindings(CheckCalibration(Bytes(pair)), {});
}

TEST(CalibrationCheck, RefusesFilesWithoutAGeometry) {
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
  ExpectFindings(CheckCalibration(swapped),
                 {{"error byte-order"}, "the whole file is a valid calibration with its bytes swapped"});
  ExpectFindings(CheckCalibration(partly),
                 {{"error byte-order"}, "640 with its bytes swapped; the same is true of 1 more field."});

  // All fields that the library refuses are named.
  ExpectFindings(CheckCalibration(Bytes(IdentityCalibration({{4, 0}, {28, -1}}))),
                 {{"error field", "error field"}, "auxCalibHeight at byte 112: -1 is below 1 pixel"});
  ExpectFindings(CheckCalibration(Bytes(IdentityCalibration({{2, 1920}}))),
                 {{"error field"}, "The aux image has that width: are the cameras exchanged?"});
}

TEST(CalibrationCheck, NamesOddGeometryAndLeavesTheRestAlone) {
  struct Case {
    std::vector<std::pair<size_t, float>> changes;  // of fields by number, to two equal cameras 30 mm apart
    Expected expected;
  };
  const float c = std::cos(0.7F), s = std::sin(0.7F);
  const Case cases[] = {
      {{}, {}},
      {{{22, 0}}, {{"warning no-extrinsics"}, "42.7"}},  // 512 * 25 / 300
      {{{22, 0}, {13, 0.8F}, {15, 0.6F}, {19, -0.6F}, {21, 0.8F}},
       {{"warning baseline", "note overlap"}, "The translation is zero"}},
      {{{22, 0}, {31, 3000}},
       {{"warning principal-point", "warning field-of-view", "warning no-extrinsics", "error overlap"},
        "no ToF pixel lands"}},
      {{{22, -0.03F}},
       {{"warning baseline"},
        "is 0.05 pixels. With another reading this is better: the translation in metres (30 mm apart; moves"}},
      {{{22, -30000}}, {{"warning baseline", "error overlap"}, "the translation in micrometres (30 mm apart"}},
      {{{22, 5}, {24, 31}}, {{"warning axial-translation"}, "(5, 0, 31) is mostly along the optical axis"}},
      {{{14, 0.002F}}, {{"error rotation"}, "0.002 off the identity"}},
      {{{13, -1}}, {{"error mirror"}, "left and right"}},
      {{{4, 540}, {29, 502}}, {{"warning focal-lengths"}, "The ToF focal lengths are 540.0 and 512.0"}},
      {{{4, 540}, {8, 540}, {29, 502}, {33, 502}}, {}},
      // 640 x 480 with square pixels, and squashed to 640 x 360 as the library reads it.
      {{{28, 480}, {34, 239.5F}}, {{"note aspect"}, "640 x 360 pixels from (0, 60) on"}},
      {{{28, 480}, {33, 682.667F}, {34, 239.5F}}, {}},
      {{{31, 375}}, {{"warning principal-point"}, "aux principal point (375.0, 180.0) lies 55.5 pixels right of"}},
      {{{35, 320}, {36, 180}, {31, 0}, {34, 0}},
       {{"warning matrix-form", "warning principal-point", "warning overlap"}, "The other reading is its transpose"}},
      {{{5, 0.1F}}, {{"warning matrix-form"}, "[512, 0.1, 320;"}},
      {{{5, 0.04F}}, {}},
      {{{7, 9}}, {{"warning matrix-form"}, "[512, 0, 320; 9, 512, 180; 0, 0, 1]"}},
      {{{29, 100}, {33, 100}}, {{"warning field-of-view"}, "sees 145.3 degrees"}},
      // Turned about x by 40 degrees: the views share nothing.
      {{{17, c}, {18, -s}, {20, s}, {21, c}}, {{"error overlap"}, "As written, 0, 0 and 0 % of the ToF pixels"}},
      // The same with a ToF frame cut such that the aux camera sees it with the transposed rotation only.
      {{{9, 620}, {17, c}, {18, -s}, {20, s}, {21, c}},
       {{"warning principal-point", "error overlap"},
        "this is better: the rotation transposed (100, 100 and 100 % land;"}},
      // Coefficients as large as a real camera's, whose numerator and denominator cancel.
      {{{39, 5}, {40, 8}, {43, 3}, {44, 5}, {45, 8}, {46, 3}, {47, 7}, {52, 7}}, {}},
      {{{47, -0.6F}}, {{"error lens-range"}, "aux camera is valid up to 36.7 degrees off its axis, 254 pixels"}},
      {{{39, -0.7F}}, {{"error lens-range"}, "ToF camera is valid up to 34.6 degrees off its axis, 236 pixels"}},
      {{{39, 0.9F}}, {{"note undistortion"}, "at pixel (4, 4)"}},
  };
  for (const Case& item : cases) {
    CalibrationFields fields = IdentityCalibration({{22, -30}});
    for (const auto& [field, value] : item.changes) fields[field] = value;
    ExpectFindings(CheckCalibration(Bytes(fields)), item.expected);
  }
}

TEST(FindingsJson, HoldsOtherReadingsWithTheirPixels) {
  Spread moved;
  moved.count = 900;
  moved.median = 1.5;
  moved.maximum = 4;
  const Findings findings{{Severity::kNote, "aim", "aux", "what", "do", {{"a", moved}, {"b", Spread()}}}};
  EXPECT_EQ(FindingsJson(findings), nlohmann::ordered_json::parse(R"([{
      "severity": "note", "code": "aim", "camera": "aux", "text": "what", "advice": "do",
      "readings": [{"reading": "a", "median_pixels": 1.5, "maximum_pixels": 4},
                   {"reading": "b", "median_pixels": null, "maximum_pixels": null}]}])"));
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

TEST(PixelTrace, FollowsEachPixelToWhereTheLibraryPutsIt) {
  constexpr size_t kPixels = size_t{itof::kFrameWidth} * itof::kFrameHeight;
  CalibrationRecord record = simulation::StrongRig().record;
  record.auxDistortion[0] += 0.5F;  // positions near the edges leave the frame
  std::mt19937 random(1);
  std::vector<uint16_t> words(kPixels);
  for (uint16_t& word : words) word = static_cast<uint16_t>(random() % 7 == 0 ? 0xE000 : random() | 0x0100);
  for (const float ratio : {1.0F, 1.6F}) {
    const RunTables tables(record, ratio);
    const FrameFates frame = TraceFrame(tables, words);
    InitLibrary(record);
    std::vector<uint16_t> cells = words;
    itof_execute_algo(cells.data(), ratio);
    size_t landed = 0, withDepth = 0;
    for (size_t i = 0; i < kPixels; ++i) {
      withDepth += itof::DepthCode(words[i]) != 0;
      if (frame.fates[i] != Fate::kLanded) continue;
      ++landed;
      const int x = static_cast<int>(i) % itof::kFrameWidth, y = static_cast<int>(i) / itof::kFrameWidth;
      const cv::Point target = tables.Trace(x, y, words[i]).target;
      ASSERT_EQ(cells[static_cast<size_t>(target.y * itof::kFrameWidth + target.x)],
                itof::AlignedWord(itof::WorkingWord(words[i])));
    }
    // Each written cell was last written by a pixel that landed or by one without depth, or it is the corner.
    const auto touched = kPixels - static_cast<size_t>(std::ranges::count(cells, 0));
    const auto withoutDepth = static_cast<size_t>(std::count(cells.begin() + 1, cells.end(), 0x0700));
    EXPECT_EQ(touched, landed + withoutDepth + 1);
    const auto& counts = frame.counts.byFate;
    EXPECT_EQ(counts[static_cast<size_t>(Fate::kNoDepth)], kPixels - withDepth);
    EXPECT_EQ(std::accumulate(counts.begin(), counts.end(), size_t{0}), kPixels);
    for (const Fate fate : {Fate::kOverwritten, Fate::kOutsideGrid, Fate::kUnwrittenEntry}) {
      EXPECT_GT(counts[static_cast<size_t>(fate)], 0U) << kFateNames[static_cast<size_t>(fate)].text;
    }
  }
}

}  // namespace
}  // namespace itoftool
