// Measures the effect of other readings of a calibration by running them through the alignment.
#include "check/checkedpair.h"

#include <algorithm>

#include "camera/rotation.h"
#include "check/camerafields.h"
#include "inspection/comparison.h"
#include "support/text.h"

namespace itoftool {
namespace {

constexpr uint16_t kEffectCode = 1000;

/// A reading and where its pixels go, to leave out readings that are the same in pixels.
struct Candidate {
  const std::string* name;
  std::vector<cv::Point2d> near, far;
};

std::string MovedText(const Spread& moved, size_t pixels) {
  if (IsHardlyAny(moved, pixels)) return "hardly any pixel lands with both readings";
  return Format("moves positions at 1 m by a median of %.1f pixels and at most %.1f", moved.median, moved.maximum);
}

bool AreSame(std::span<const cv::Point> pixels, const Candidate& a, const Candidate& b) {
  constexpr double kSame = 2;  // pixels
  const Spread near = MeasureSpread(pixels, a.near, b.near), far = MeasureSpread(pixels, a.far, b.far);
  return *a.name == *b.name || (near.count > 0 && std::max(near.percentile95, far.percentile95) < kSame);
}

}  // namespace

CheckedPair::CheckedPair(const itof::CalibrationRecord& calibration)
    : record(calibration),
      pair(MakeCameraPair(calibration)),
      isRotation(OrthonormalityError(pair.rotation) <= kOrthonormal),
      isInPixels(!ReadCamera(record, WhichCamera::kTof).IsInFractions() &&
                 !ReadCamera(record, WhichCamera::kAux).IsInFractions()),
      flaws(MeasureFlaws(calibration, pair)),
      explanations(isRotation && isInPixels ? Explain(calibration, flaws) : std::vector<Explanation>{}),
      tables(calibration, 1),
      pixels(TofPixels(8)) {}

Alternatives CheckedPair::ReadingsWithout(Flaw flaw,
                                          const std::function<std::string(const Explanation&)>& evidence) const {
  constexpr size_t kMost = 4;
  int mostGain = 0;  // among the readings of fields that the flaw depends on
  for (const Explanation& each : explanations) {
    if (DependsOn(flaw, each.reading->part)) mostGain = std::max(mostGain, each.gain);
  }
  std::vector<Candidate> candidates;
  std::vector<std::string> texts;
  Alternatives alternatives;
  alternatives.areWeak = true;
  for (const Explanation& each : explanations) {
    const int least = each.reading->isWeak ? mostGain : mostGain - 1;
    if (!each.removed[static_cast<size_t>(flaw)] || each.gain < least) continue;
    const RunTables other(each.record, 1);
    Candidate candidate{&each.reading->name, AlignedPositions(other, pixels, kCompareDepths[0]),
                        AlignedPositions(other, pixels, kEffectCode)};
    const auto isKnown = [&](const Candidate& known) { return AreSame(pixels, known, candidate); };
    if (std::ranges::any_of(candidates, isKnown)) continue;
    const Spread moved = MeasureSpread(pixels, AlignedPositions(tables, pixels, kEffectCode), candidate.far);
    alternatives.readings.push_back({each.reading->name, moved});
    texts.push_back(each.reading->name + " (" + (evidence ? evidence(each) + "; " : "") +
                    MovedText(moved, pixels.size()) + ")");
    candidates.push_back(std::move(candidate));
    alternatives.areWeak &= each.reading->isWeak;
    if (candidates.size() == kMost) break;
  }
  if (texts.empty()) return alternatives;
  alternatives.text =
      texts.size() == 1 ? " With another reading this is better: " : " With other readings this is better: ";
  for (const std::string& text : texts) alternatives.text += (&text == &texts.front() ? "" : "; ") + text;
  alternatives.text += ".";
  return alternatives;
}

std::string CheckedPair::Effect(const itof::CalibrationRecord& otherReading) const {
  const Spread spread = MeasureSpread(pixels, AlignedPositions(tables, pixels, kEffectCode),
                                      AlignedPositions(RunTables(otherReading, 1), pixels, kEffectCode));
  if (spread.count == 0) return "No pixel lands with both readings.";
  return Format("Between the two readings, positions at 1 m differ by a median of %.1f pixels and at most %.1f.",
                spread.median, spread.maximum);
}

}  // namespace itoftool
