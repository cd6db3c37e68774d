// Conventions that are easily mistaken, and numbers that no camera pair has. Wherever another reading of the file is
// offered, both are run through the alignment, and the text says by how many pixels they differ.
#include "check/checkedpair.h"
#include "check/findings.h"
#include "inspection/comparison.h"
#include "support/text.h"

namespace itoftool {

JudgedPair::JudgedPair(const itof::CalibrationRecord& judged)
    : record(judged), pair(MakeCameraPair(judged)), tables(judged, 1), pixels(TofPixels(8)) {}

std::string JudgedPair::Effect(const itof::CalibrationRecord& otherReading) const {
  constexpr uint16_t kCode = 1000;
  const Spread spread = MeasureSpread(pixels, AlignedPositions(tables, pixels, kCode),
                                      AlignedPositions(RunTables(otherReading, 1), pixels, kCode));
  if (spread.count == 0) return "No pixel lands with both readings.";
  return Format("Between the two, pixels at 1 m move by a median of %.1f, at most by %.1f.", spread.median,
                spread.maximum);
}

std::vector<Finding> CheckGeometry(const itof::CalibrationRecord& record) {
  const JudgedPair judged(record);
  Findings findings;
  const bool rotation = JudgeRotation(judged, findings);
  const bool matrices = JudgeMatrices(judged, findings);
  if (rotation && matrices) JudgeLenses(judged, findings);
  JudgeTranslation(judged, findings);
  if (rotation && matrices) JudgeDirection(judged, findings);
  return findings;
}

}  // namespace itoftool
