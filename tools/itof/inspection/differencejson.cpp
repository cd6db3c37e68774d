// Writes the difference between two calibrations as JSON, for programs.
#include <iterator>

#include "inspection/difference.h"
#include "inspection/jsonvalues.h"

namespace itoftool {

std::string DifferenceJson(const CalibrationDifference& difference) {
  Json entries = Json::array(), moves = Json::array(), ninePixels = Json::array();
  for (const EntryDifference& entry : difference.entries) {
    entries.push_back({{"name", entry.name},
                       {"a", entry.a ? Number(*entry.a) : Json(entry.textA)},
                       {"b", entry.b ? Number(*entry.b) : Json(entry.textB)},
                       {"unit", entry.unit}});
  }
  for (size_t i = 0; i < std::size(kCompareDepths); ++i) {
    const auto& [distance, onlyA, onlyB] = difference.moves[i];
    Json at = AtDepth(kCompareDepths[i]);
    at.update(SpreadJson(distance));
    at["pixels_only_with_a"] = onlyA;
    at["pixels_only_with_b"] = onlyB;
    moves.push_back(at);
  }
  for (const auto& [pixel, move] : difference.ninePixels) {
    ninePixels.push_back({{"tof_pixel", JsonPixel(pixel)}, {"move", JsonPosition(move)}});
  }
  return JsonText({{"fields", entries}, {"moved_pixels", moves}, {"moves_at_1_m", ninePixels}});
}

}  // namespace itoftool
