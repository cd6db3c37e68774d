// Compares where a calibration and each of its readings put pixels with where the reference puts them. This also
// distinguishes readings that are as sound as the file itself, such as a translation with the opposite sign.
#include "check/reference.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "calibration/calibrationcheck.h"
#include "check/flaws.h"
#include "check/readings.h"
#include "inspection/comparison.h"
#include "inspection/pixeltrace.h"
#include "support/text.h"

namespace itoftool {
namespace {

// Pixels. The latter is 5 % of the frame's width.
constexpr double kTolerance = 2, kApart = 32;

/// Where pixels land, at each of kCompareDepths.
using Landing = PerDepth<std::vector<cv::Point2d>>;

/// The distance of one landing from another.
struct Distance {
  PerDepth<Spread> spreads;
  double worst = 0;  // largest median, pixels; infinite if no pixel lands with both at a depth
};

class Comparison {
 public:
  Landing Land(const itof::CalibrationRecord& record) const {
    const RunTables tables(record, 1);
    Landing landing;
    for (size_t i = 0; i < landing.size(); ++i) landing[i] = AlignedPositions(tables, pixels_, kCompareDepths[i]);
    return landing;
  }

  Distance Measure(const Landing& a, const Landing& b) const {
    Distance distance;
    for (size_t i = 0; i < a.size(); ++i) {
      const Spread& spread = distance.spreads[i] = MeasureSpread(pixels_, a[i], b[i]);
      const double median = spread.count > 0 ? spread.median : std::numeric_limits<double>::infinity();
      distance.worst = std::max(distance.worst, median);
    }
    return distance;
  }

 private:
  std::vector<cv::Point> pixels_ = TofPixels(8);
};

/// E.g. "12.3 pixels at 0.3 m (at most 15.8), ...".
std::string DistanceText(const Distance& distance) {
  const auto isEmpty = [](const Spread& spread) { return spread.count == 0; };
  if (std::ranges::all_of(distance.spreads, isEmpty)) return "no pixel lands with both";
  std::vector<std::string> parts;
  for (size_t i = 0; i < std::size(kCompareDepths); ++i) {
    const Spread& spread = distance.spreads[i];
    const double depth = kCompareDepths[i] / 1000.0;
    parts.push_back(spread.count == 0
                        ? Format("no pixel lands with both at %g m", depth)
                        : Format("%.1f pixels at %g m (at most %.1f)", spread.median, depth, spread.maximum));
  }
  return Joined(parts);
}

struct Candidate {
  const Reading* reading;
  Landing landing;
  Distance left;
};

itof::CalibrationRecord WithoutRotation(itof::CalibrationRecord record) {
  std::ranges::copy(cv::Matx33f::eye().val, record.rotation);
  return record;
}

int CountFlaws(const itof::CalibrationRecord& record) {
  const Flaws flaws = MeasureFlaws(record, MakeCameraPair(record));
  return static_cast<int>(std::ranges::count_if(flaws.sizes, [](double size) { return size > 1; }));
}

/// The readings that bring the calibration near the reference, the nearest first.
std::vector<Candidate> NearReadings(const Comparison& comparison, const Landing& good,
                                    const itof::CalibrationRecord& record, double worst) {
  constexpr double kNear = 1.0 / 3, kAsNear = 1.5;
  constexpr size_t kMost = 4;
  const double nearest = std::min(kNear * worst, kApart);
  // A weak reading of the pose turns any rotation into a small one. It must be better than no rotation at all.
  const double withoutRotation = comparison.Measure(good, comparison.Land(WithoutRotation(record))).worst;
  const int flaws = CountFlaws(record);
  std::vector<Candidate> near;
  for (const Reading& reading : Readings()) {
    itof::CalibrationRecord other = record;
    // Skip readings with more flaws than the file.
    if (!reading.apply(other) || itof::FirstCalibrationFault(other) || CountFlaws(other) > flaws) continue;
    Landing landing = comparison.Land(other);
    const Distance left = comparison.Measure(good, landing);
    const bool isWeak = reading.isWeak && reading.part == ReadingPart::kExtrinsics;
    if (left.worst < (isWeak ? std::min(nearest, withoutRotation / 2) : nearest))
      near.push_back({&reading, std::move(landing), left});
  }
  std::ranges::stable_sort(near, {}, [](const Candidate& each) { return each.left.worst; });
  std::vector<Candidate> named;
  for (Candidate& each : near) {
    constexpr double kSame = 1;  // pixel
    if (named.size() == kMost || each.left.worst > kAsNear * near.front().left.worst + kSame) break;
    const auto isSame = [&](const Candidate& other) { return other.reading->name == each.reading->name; };
    if (std::ranges::none_of(named, isSame)) named.push_back(each);
  }
  return named;
}

/// How far the calibration is from the reference.
Finding CheckDistance(const itof::CalibrationRecord& good, const itof::CalibrationRecord& record) {
  const Comparison comparison;
  const Landing expected = comparison.Land(good), written = comparison.Land(record);
  const Distance distance = comparison.Measure(expected, written);
  Finding finding{Severity::kNote, "reference", "",
                  "Median distance of aligned positions from those of the reference: " + DistanceText(distance) + ".",
                  "Units of one model differ by their build tolerances. If the distances are larger, run \"itof "
                  "calibration diff\" to see which fields differ."};
  std::vector<Candidate> named;
  if (distance.worst > kTolerance) named = NearReadings(comparison, expected, record, distance.worst);
  if (!named.empty()) {
    finding.severity = Severity::kWarning;
    finding.advice = "Compare these readings with the stereo calibration of this unit.";
    finding.text +=
        named.size() == 1 ? " Another reading is near the reference: " : " Other readings are near the reference: ";
    for (const Candidate& each : named) {
      finding.text += (&each == &named.front() ? "" : "; ") + each.reading->name + ", " + DistanceText(each.left);
      finding.readings.push_back({each.reading->name, comparison.Measure(written, each.landing).spreads[1]});
    }
    finding.text += ".";
  } else if (distance.worst > kApart) {
    finding.severity = Severity::kWarning;
    finding.text += " No other reading is near the reference.";
  }
  return finding;
}

}  // namespace

Findings CheckAgainst(const itof::CalibrationRecord& good, const itof::CalibrationRecord& record) {
  const Findings known = CheckGeometry(good);
  Findings findings = CheckGeometry(record);
  std::erase_if(findings, [&](const Finding& finding) {
    return std::ranges::any_of(known, [&](const Finding& other) {
      return other.name == finding.name && other.camera == finding.camera && other.severity == finding.severity;
    });
  });
  findings.push_back(CheckDistance(good, record));
  return findings;
}

}  // namespace itoftool
