// What becomes of a depth pixel on its way through the library, stage by stage.
#ifndef ITOF_TOOL_INSPECTION_PIXELTRACE_H_
#define ITOF_TOOL_INSPECTION_PIXELTRACE_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <opencv2/core.hpp>
#include <span>
#include <vector>

#include "alignment/alignmentcontext.h"
#include "calibration/calibrationrecord.h"

namespace itoftool {

/// How a pixel's way ends.
enum class Fate {
  kLanded,
  kNoDepth,         // follows the pixel before it
  kOverwritten,     // landed, and a later pixel took the cell
  kOutsideGrid,     // its ideal cell is not in the lens table
  kUnwrittenEntry,  // the lens puts its ideal cell outside the frame: sent to cell (0, 0)
  kOutsideFrame,    // the lens table itself puts it beyond the frame
};

/// Each fate, in the order of the values, for people and for programs.
struct FateNames {
  const char* text;
  const char* key;
};
inline constexpr FateNames kFateNames[] = {
    {"landed and stayed", "landed"},
    {"without depth", "without_depth"},
    {"overwritten by a later pixel", "overwritten"},
    {"outside the ideal grid", "outside_ideal_grid"},
    {"sent to the corner by an unwritten table entry", "sent_to_corner"},
    {"outside the frame", "outside_frame"},
};

/// A pixel's stages. Positions are in pixels with integers at their centres.
struct PixelTrace {
  cv::Point2d undistorted;  // ideal ToF image, after the library's three rounds
  bool inFront;             // of the aux camera; without it the far-plane position is (0, 0)
  cv::Point2d farPlane;     // ideal aux image at the run's ratio, as the two next ones
  cv::Point2d parallax;
  cv::Point2d ideal;
  cv::Point cell;         // that `ideal` is in, rounded
  Fate fate;              // kLanded, kOutsideGrid, kUnwrittenEntry or kOutsideFrame
  cv::Point2d distorted;  // what the lens table has for the cell; (0, 0) if nothing
  cv::Point target;       // cell of the aux frame, where the fate is kLanded or kUnwrittenEntry
};

/// The library's tables for one calibration and one ratio, in a process that has just loaded the library.
class RunTables {
 public:
  RunTables(const itof::CalibrationRecord& record, float ratio);

  /// The way of ToF pixel (x, y) with a depth word, whose code is not 0.
  PixelTrace Trace(int x, int y, uint16_t word) const;

  /// The way of a pixel without depth that no pixel with depth has gone before.
  PixelTrace TraceStart() const;

  const itof::AlignmentContext& Context() const { return context_; }

 private:
  /// Looks the ideal position of a trace up, and fills in the rest.
  void LookUp(PixelTrace& trace) const;

  itof::AlignmentContext context_;  // with its run tables; entries that were not written hold 0
  std::vector<bool> inFront_, hasEntry_;
  std::vector<float> undistortedX_, undistortedY_;
};

/// How many pixels of a frame have each fate.
struct FateCounts {
  std::array<size_t, std::size(kFateNames)> byFate{};
  size_t overwrittenWithoutDepth = 0;  // of the overwritten ones, those whose cell a pixel without depth took
};

/// The fate of every pixel of a frame, row after row.
struct FrameFates {
  std::vector<Fate> fates;
  FateCounts counts;
};

/// Follows all pixels of a frame of 640 x 360 depth words, the first frame of its run.
FrameFates TraceFrame(const RunTables& tables, std::span<const uint16_t> words);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_PIXELTRACE_H_
