// Lists the fields in which two calibrations differ, and measures the effect by running both through the alignment.
#include "inspection/difference.h"

#include <algorithm>
#include <functional>

#include "calibration/calibrationfields.h"
#include "inspection/valuetext.h"

namespace itoftool {
namespace {

std::vector<EntryDifference> CompareEntries(const itof::CalibrationRecord& a, const itof::CalibrationRecord& b) {
  std::vector<EntryDifference> differences;
  itof::ForEachEntry([&](const itof::CalibrationField& field, size_t index) {
    const std::string textA = EntryText(a, field, index), textB = EntryText(b, field, index);
    if (textA == textB) return;
    const auto value = [&](const itof::CalibrationRecord& record) -> std::optional<double> {
      if (field.kind == itof::FieldKind::kUnused) return std::nullopt;
      return static_cast<double>(EntryValue(record, field, index));
    };
    differences.push_back({itof::EntryName(field, index), EntryUnit(field, index), textA, textB, value(a), value(b)});
  });
  return differences;
}

size_t CountLanded(const std::vector<cv::Point2d>& positions) {
  return static_cast<size_t>(std::ranges::count_if(positions, std::not_fn(IsNowhere)));
}

}  // namespace

CalibrationDifference CompareCalibrations(const itof::CalibrationRecord& a, const itof::CalibrationRecord& b) {
  CalibrationDifference difference{.entries = CompareEntries(a, b), .moves = {}, .ninePixels = {}};
  const RunTables tablesA(a, 1), tablesB(b, 1);
  const std::vector<cv::Point> pixels = TofPixels(1), nine = NinePixels();
  for (size_t i = 0; i < std::size(kCompareDepths); ++i) {
    const uint16_t depth = kCompareDepths[i];
    const auto landedA = AlignedPositions(tablesA, pixels, depth), landedB = AlignedPositions(tablesB, pixels, depth);
    const Spread distance = MeasureSpread(pixels, landedA, landedB);
    difference.moves[i] = {distance, CountLanded(landedA) - distance.count, CountLanded(landedB) - distance.count};
  }
  const auto nineA = AlignedPositions(tablesA, nine, 1000), nineB = AlignedPositions(tablesB, nine, 1000);
  for (size_t i = 0; i < nine.size(); ++i) difference.ninePixels.push_back({nine[i], nineB[i] - nineA[i]});
  return difference;
}

}  // namespace itoftool
