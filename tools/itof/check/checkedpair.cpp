// Measures the effect of another reading of a calibration by running both readings through the alignment.
#include "check/checkedpair.h"

#include "inspection/comparison.h"
#include "support/text.h"

namespace itoftool {

CheckedPair::CheckedPair(const itof::CalibrationRecord& calibration)
    : record(calibration), pair(MakeCameraPair(calibration)), tables(calibration, 1), pixels(TofPixels(8)) {}

std::string CheckedPair::Effect(const itof::CalibrationRecord& otherReading) const {
  constexpr uint16_t kCode = 1000;
  const Spread spread = MeasureSpread(pixels, AlignedPositions(tables, pixels, kCode),
                                      AlignedPositions(RunTables(otherReading, 1), pixels, kCode));
  if (spread.count == 0) return "No pixel lands with both readings.";
  return Format("Between the two readings, positions at 1 m differ by a median of %.1f pixels and at most %.1f.",
                spread.median, spread.maximum);
}

}  // namespace itoftool
