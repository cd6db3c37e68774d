// Compares the findings of a calibration with a mistake with those of the sound one.
#include "support/verdict.h"

#include <algorithm>

#include "check/findings.h"
#include "check/readings.h"
#include "inspection/comparison.h"

using namespace itoftool;
using itof::CalibrationRecord;

namespace {

/// Whether the positions of both calibrations agree to a pixel or two.
bool AreSame(const CalibrationRecord& a, const CalibrationRecord& b) {
  const auto pixels = TofPixels(8);
  const RunTables tablesA(a, 1), tablesB(b, 1);
  return std::ranges::all_of(kCompareDepths, [&](uint16_t code) {
    const auto spread =
        MeasureSpread(pixels, AlignedPositions(tablesA, pixels, code), AlignedPositions(tablesB, pixels, code));
    return spread.count > 0 && spread.percentile95 < 2;
  });
}

}  // namespace

Verdict VerdictOn(const Mistake& mistake, const CalibrationRecord& sound) {
  CalibrationRecord broken = sound;
  mistake.make(broken);
  const auto known = CheckGeometry(sound);
  Verdict verdict = Verdict::kNothing;
  for (const Finding& finding : CheckGeometry(broken)) {
    if (finding.severity == Severity::kNote && finding.readings.empty()) continue;
    const bool isKnown = std::ranges::any_of(
        known, [&](const Finding& other) { return other.name == finding.name && other.camera == finding.camera; });
    if (isKnown) continue;
    const bool isNamed = std::ranges::find(mistake.codes, finding.name) != mistake.codes.end();
    const bool isRight = ((finding.readings.empty() || mistake.reading.empty()) && isNamed) ||
                         std::ranges::any_of(finding.readings, [&](const OtherReading& named) {
                           if (named.name == mistake.reading) return true;
                           const auto& all = Readings();
                           const auto reading = std::ranges::find(all, named.name, &Reading::name);
                           CalibrationRecord meant = broken;
                           return reading->apply(meant) && AreSame(meant, sound);
                         });
    const bool isClaim = !finding.readings.empty() || (finding.name != "overlap" && finding.name != "roll");
    verdict = std::max(verdict, isRight ? Verdict::kNamed : isClaim ? Verdict::kWrong : Verdict::kNoticed);
  }
  return verdict;
}
