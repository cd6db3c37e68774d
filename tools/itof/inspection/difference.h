// Compares two calibrations.
#ifndef ITOF_TOOL_INSPECTION_DIFFERENCE_H_
#define ITOF_TOOL_INSPECTION_DIFFERENCE_H_

#include <cstddef>
#include <opencv2/core.hpp>
#include <optional>
#include <string>
#include <vector>

#include "calibration/calibrationrecord.h"
#include "inspection/comparison.h"

namespace itoftool {

/// An entry of the calibration file that has another value in B than in A.
struct EntryDifference {
  std::string name, unit;
  std::string textA, textB;    // the values; the bits of unused words
  std::optional<double> a, b;  // nothing for unused words
};

/// How far aligned positions move from A to B, for a frame whose pixels all have one depth, in pixels.
struct Move {
  Spread distance;      // of the pixels that land with both
  size_t onlyA, onlyB;  // pixels that land with one only
};

/// Where a pixel goes at 1 m from A to B, in pixels to the right and down; kNowhere if it does not land with both.
struct PixelMove {
  cv::Point tofPixel;
  cv::Point2d move;
};

struct CalibrationDifference {
  std::vector<EntryDifference> entries;
  PerDepth<Move> moves;
  std::vector<PixelMove> ninePixels;  // they show whether the displacement is a shift, a turn or a scale
};

/// Both records must be ones that itof_init accepts.
CalibrationDifference CompareCalibrations(const itof::CalibrationRecord& a, const itof::CalibrationRecord& b);

/// The difference as JSON. Numbers that do not exist are null.
std::string DifferenceJson(const CalibrationDifference& difference);

/// The difference as text for a terminal.
std::string DifferenceText(const CalibrationDifference& difference);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_DIFFERENCE_H_
