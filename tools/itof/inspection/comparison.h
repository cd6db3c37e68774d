// Compares where pixels land: with the alignment and in exact geometry, or with two calibrations.
#ifndef ITOF_TOOL_INSPECTION_COMPARISON_H_
#define ITOF_TOOL_INSPECTION_COMPARISON_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <opencv2/core.hpp>
#include <span>
#include <vector>

#include "inspection/camerapair.h"
#include "inspection/pixeltrace.h"

namespace itoftool {

/// The depths of all comparisons, in depth codes: 0.3, 1 and 3 m if a code is a millimetre.
inline constexpr uint16_t kCompareDepths[] = {300, 1000, 3000};

/// One item for each of kCompareDepths.
template <typename T>
using PerDepth = std::array<T, std::size(kCompareDepths)>;

/// Statistics of a set of distances in pixels; all 0 if the set is empty.
struct Spread {
  size_t count = 0;
  double median = 0, percentile95 = 0, maximum = 0;
  cv::Point where;  // ToF pixel of the maximum
};

/// Whether so few of the `compared` pixels count that the distances say little: fewer than 5 %.
inline bool IsHardlyAny(const Spread& spread, size_t compared) { return spread.count < compared / 20; }

/// The spread of the distances between `a` and `b`, two positions of each pixel. Pixels with a position that is
/// not-a-number do not count.
Spread MeasureSpread(std::span<const cv::Point> pixels, std::span<const cv::Point2d> a, std::span<const cv::Point2d> b);

/// Positions in the real aux image to which the library moves ToF pixels of one depth code, before truncation to cells;
/// kNowhere for pixels that do not land, or that land where the aux lens model is not valid. The tables must be for a ratio of
/// 1.
std::vector<cv::Point2d> AlignedPositions(const RunTables& tables, std::span<const cv::Point> pixels, uint16_t code);

/// The alignment against exact positions, for a frame whose pixels all have one depth code.
struct Approximation {
  Spread error;     // from the middles of the targets, for pixels that land and whose exact position is in the frame
  size_t lost = 0;  // pixels whose exact position is in the frame, but that are dropped or sent to the corner
  size_t belonging = 0;  // pixels whose exact position is in the frame
};
Approximation MeasureApproximation(const CameraPair& pair, const RunTables& tables, uint16_t code);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_COMPARISON_H_
