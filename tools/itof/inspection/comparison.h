// Where pixels land, compared between the alignment and exact geometry, and between two calibrations.
#ifndef ITOF_TOOL_INSPECTION_COMPARISON_H_
#define ITOF_TOOL_INSPECTION_COMPARISON_H_

#include <cstddef>
#include <opencv2/core.hpp>
#include <span>
#include <vector>

#include "inspection/camerapair.h"
#include "inspection/pixeltrace.h"

namespace itoftool {

/// Depths at which commands compare, in depth codes: 0.3, 1 and 3 m if a code is a millimetre.
inline constexpr uint16_t kCompareDepths[] = {300, 1000, 3000};

/// How large a set of distances is, in pixels. Without any, all is 0.
struct Spread {
  size_t count = 0;
  double median = 0, percentile95 = 0, maximum = 0;
  cv::Point where;  // the ToF pixel of the maximum
};

/// Of the distances between two positions of each pixel; those with a not-a-number are left out.
Spread MeasureSpread(std::span<const cv::Point> pixels, std::span<const cv::Point2d> a, std::span<const cv::Point2d> b);

/// Positions in the aux picture to which the library moves ToF pixels of one depth code, before they are cut to cells;
/// not-a-number for those that it does not land. The tables are those of ratio 1.
std::vector<cv::Point2d> AlignedPositions(const RunTables& tables, std::span<const cv::Point> pixels, uint16_t code);

/// The library's cells against the exact positions of a frame whose pixels all have one depth code.
struct Approximation {
  Spread error;          // of the cells' centres, at pixels that land and belong into the frame
  size_t lost = 0;       // belong into the frame, and are dropped or sent to the corner
  size_t belonging = 0;  // belong into the frame
};
Approximation MeasureApproximation(const CameraPair& pair, const RunTables& tables, uint16_t code);

/// The share (0..1) of ToF pixels, one of each 8 x 8 taken, that the aux camera has in its frame at a depth.
double Overlap(const CameraPair& pair, double depth);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_COMPARISON_H_
