// Writes the difference between two calibrations as text for a terminal.
#include <iterator>

#include "inspection/difference.h"
#include "inspection/valuetext.h"
#include "support/text.h"

namespace itoftool {
namespace {

std::string MoveText(const Move& move) {
  const Spread& distance = move.distance;
  if (distance.count == 0) return Format("  %-38s", "no pixel lands with both");
  return Format("  %8.2f %9.2f  %-18s", distance.median, distance.maximum, PixelText(distance.where).c_str());
}

}  // namespace

std::string DifferenceText(const CalibrationDifference& difference) {
  if (difference.entries.empty()) return "The fields are the same.\n";
  std::string text = "Fields that differ, A and B\n";
  for (const EntryDifference& entry : difference.entries) {
    text += Format("  %-18s  %-16s  %-16s  %s\n", entry.name.c_str(), entry.textA.c_str(), entry.textB.c_str(),
                   entry.unit.c_str());
  }
  text +=
      "\nHow far aligned positions move from A to B, in pixels (before truncation to cells)\n"
      "  depth    median   maximum, at ToF pixel        only with A   only with B\n";
  for (size_t i = 0; i < std::size(kCompareDepths); ++i) {
    const Move& move = difference.moves[i];
    text +=
        Format("  %.1f m%s %12zu  %12zu\n", kCompareDepths[i] / 1000.0, MoveText(move).c_str(), move.onlyA, move.onlyB);
  }
  text += "\nHow nine of these pixels move at 1 m, in pixels to the right and down\n";
  for (size_t i = 0; i < difference.ninePixels.size(); ++i) {
    const auto& [pixel, move] = difference.ninePixels[i];
    const std::string by = IsNowhere(move) ? "not with both" : Format("(%+.1f, %+.1f)", move.x, move.y);
    text += Format("  %-10s  %-16s%s", PixelText(pixel).c_str(), by.c_str(), i % 3 == 2 ? "\n" : "");
  }
  return text;
}

}  // namespace itoftool
