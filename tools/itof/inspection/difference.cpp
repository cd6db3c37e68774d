// Lists the fields in which two calibrations differ, and measures the effect by running both through the alignment.
#include "inspection/difference.h"

#include <algorithm>
#include <functional>
#include <vector>

#include "calibration/calibrationfields.h"
#include "inspection/comparison.h"
#include "inspection/valuetext.h"
#include "support/text.h"

namespace itoftool {
namespace {

/// The table rows of the fields that differ.
std::string DifferingFields(const itof::CalibrationRecord& a, const itof::CalibrationRecord& b) {
  std::string rows;
  itof::ForEachEntry([&](const itof::CalibrationField& field, size_t index) {
    const std::string valueA = EntryText(a, field, index), valueB = EntryText(b, field, index);
    if (valueA == valueB) return;
    rows += Format("  %-18s  %-16s  %-16s  %s\n", itof::EntryName(field, index).c_str(), valueA.c_str(), valueB.c_str(),
                   EntryUnit(field, index).c_str());
  });
  return rows;
}

/// How nine pixels move at 1 m, which shows whether the displacement is a shift, a turn or a scale.
std::string NineMoves(const RunTables& tablesA, const RunTables& tablesB) {
  const std::vector<cv::Point> pixels = NinePixels();
  const auto a = AlignedPositions(tablesA, pixels, 1000), b = AlignedPositions(tablesB, pixels, 1000);
  std::string text = "\nHow nine of these pixels move at 1 m, in pixels to the right and down\n";
  for (size_t i = 0; i < pixels.size(); ++i) {
    const cv::Point2d move = b[i] - a[i];
    const std::string by = IsNowhere(move) ? "not with both" : Format("(%+.1f, %+.1f)", move.x, move.y);
    text += Format("  %-10s  %-16s%s", PixelText(pixels[i]).c_str(), by.c_str(), i % 3 == 2 ? "\n" : "");
  }
  return text;
}

size_t CountLanded(const std::vector<cv::Point2d>& positions) {
  return static_cast<size_t>(std::ranges::count_if(positions, std::not_fn(IsNowhere)));
}

}  // namespace

std::string DifferenceText(const itof::CalibrationRecord& a, const itof::CalibrationRecord& b) {
  const std::string rows = DifferingFields(a, b);
  if (rows.empty()) return "The fields are the same.\n";
  std::string text = "Fields that differ, A and B\n";
  text += rows;
  text += "\nHow far aligned positions move from A to B, in pixels (before truncation to cells)\n";
  text += "  depth    median   maximum, at ToF pixel        only with A   only with B\n";
  const RunTables tablesA(a, 1), tablesB(b, 1);
  const std::vector<cv::Point> pixels = TofPixels(1);
  for (const uint16_t depth : kCompareDepths) {
    const auto landedA = AlignedPositions(tablesA, pixels, depth), landedB = AlignedPositions(tablesB, pixels, depth);
    const Spread spread = MeasureSpread(pixels, landedA, landedB);
    text += Format("  %.1f m  %8.2f %9.2f  %-18s %12zu  %12zu\n", depth / 1000.0, spread.median, spread.maximum,
                   spread.count > 0 ? PixelText(spread.where).c_str() : "-", CountLanded(landedA) - spread.count,
                   CountLanded(landedB) - spread.count);
  }
  return text + NineMoves(tablesA, tablesB);
}

}  // namespace itoftool
