// Compares the flaws of each reading with those of the file as written.
#include "check/explanations.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>

#include "calibration/calibrationcheck.h"
#include "support/text.h"

namespace itoftool {
namespace {

bool IsRemoved(Flaw flaw, const Flaws& written, const Flaws& other) {
  constexpr double kClearly = 0.8;
  if (!written.Has(flaw)) return false;
  // Sound pairs may point apart, or see different parts of the scene. A reading counts if it reduces this clearly.
  if (flaw == Flaw::kAim) return other.centresApart < std::min(15.0, written.centresApart / 2);
  if (flaw == Flaw::kOverlap) return other.MeanShare() > (written.MeanShare() == 0 ? 0.35 : 0.8);
  // There is no roll between views in opposite directions.
  if (flaw == Flaw::kRoll && other.centresApart > 60) return false;
  return !other.Has(flaw) && other.Size(flaw) < kClearly * written.Size(flaw);
}

/// Whether the flaws that a reading removes count in its favour. Weak readings remove common flaws of sound pairs.
bool IsWorthNaming(const Reading& reading, const Flaws& written, const std::bitset<kFlawCount>& removed) {
  if (!reading.isWeak) return true;
  const bool isPose = reading.part == ReadingPart::kExtrinsics;
  if (removed[static_cast<size_t>(Flaw::kOverlap)] && written.MeanShare() < (isPose ? 0.25 : 0.4)) return true;
  return !isPose && removed.count() > 1;
}

std::optional<Explanation> Try(const Reading& reading, const itof::CalibrationRecord& written, const Flaws& flaws) {
  constexpr double kMuchWorse = 1.5;
  Explanation explanation{.reading = &reading, .record = written, .flaws = {}, .removed = {}, .gain = 0};
  if (!reading.apply(explanation.record) || itof::FirstCalibrationFault(explanation.record)) return std::nullopt;
  explanation.flaws = MeasureFlaws(explanation.record, MakeCameraPair(explanation.record));
  for (size_t i = 0; i < kFlawCount; ++i) {
    const Flaw flaw{i};
    const double size = explanation.flaws.Size(flaw);
    explanation.removed[i] = IsRemoved(flaw, flaws, explanation.flaws);
    explanation.gain += explanation.removed[i];
    if (size <= 1) continue;
    if (!flaws.Has(flaw)) {
      --explanation.gain;
    } else if (size > kMuchWorse * flaws.Size(flaw)) {
      return std::nullopt;
    }
  }
  if (explanation.gain <= 0 || !IsWorthNaming(reading, flaws, explanation.removed)) return std::nullopt;
  return explanation;
}

}  // namespace

std::vector<Explanation> Explain(const itof::CalibrationRecord& written, const Flaws& flaws) {
  std::vector<Explanation> explanations;
  for (const Reading& reading : Readings()) {
    if (reading.needsReference) continue;
    bool isOfUse = false;
    for (size_t i = 0; i < kFlawCount; ++i) isOfUse |= flaws.Has(Flaw{i}) && DependsOn(Flaw{i}, reading.part);
    if (!isOfUse) continue;
    if (auto explanation = Try(reading, written, flaws)) explanations.push_back(*explanation);
  }
  const auto rank = [](const Explanation& each) {
    return std::tuple(-each.gain, each.reading->isWeak, -std::round(5 * each.flaws.MeanShare()));
  };
  std::ranges::stable_sort(explanations, {}, rank);
  return explanations;
}

std::string TriedReadings(Flaw flaw) {
  std::vector<std::string> groups;
  for (const Reading& reading : Readings()) {
    const bool isNew = std::ranges::find(groups, reading.group) == groups.end();
    if (isNew && !reading.needsReference && DependsOn(flaw, reading.part)) groups.push_back(reading.group);
  }
  return Joined(groups);
}

}  // namespace itoftool
