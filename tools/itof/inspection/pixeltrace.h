// Follows depth pixels through the library, stage by stage.
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

/// What happened to a pixel.
enum class Fate {
  kLanded,
  kNoDepth,         // goes to the target of the pixel before it
  kOverwritten,     // landed, but a later pixel took the cell
  kOutsideGrid,     // its ideal cell is outside the lens table
  kUnwrittenEntry,  // its ideal cell has no entry in the lens table: sent to cell (0, 0)
  kOutsideFrame,    // its entry in the lens table is outside the frame
};

/// The names of the fates, in the order of the enum: for people, and as JSON keys.
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

/// The stages of a pixel. Positions are in pixels, integers at pixel centres.
struct PixelTrace {
  cv::Point2d undistorted;  // in the ideal ToF image, after the library's three rounds
  bool inFront;             // of the aux camera; if false, the far-plane position is (0, 0)
  cv::Point2d farPlane;     // in the ideal aux image at the run's ratio, as are the next two
  cv::Point2d parallax;
  cv::Point2d ideal;      // farPlane + parallax
  cv::Point cell;         // ideal cell: `ideal` rounded
  Fate fate;              // kLanded, kOutsideGrid, kUnwrittenEntry or kOutsideFrame
  cv::Point2d distorted;  // the cell's entry in the lens table, in the real aux image; (0, 0) if it has none
  cv::Point target;       // cell of the aux frame, if the fate is kLanded or kUnwrittenEntry
};

/// The library's tables for one calibration and one ratio, as the first run after itof_init has them.
class RunTables {
 public:
  RunTables(const itof::CalibrationRecord& record, float ratio);

  /// Follows ToF pixel (x, y) with a depth word whose code is not 0.
  PixelTrace Trace(int x, int y, uint16_t word) const;

  /// Follows a pixel without depth before the first pixel with depth of a frame.
  PixelTrace TraceStart() const;

  const itof::AlignmentContext& Context() const { return context_; }

 private:
  /// Fills in the stages of a trace after the ideal position.
  void LookUp(PixelTrace& trace) const;

  itof::AlignmentContext context_;  // with the maps filled; entries that the run does not write are 0
  std::vector<bool> inFront_, hasEntry_;
  std::vector<float> undistortedX_, undistortedY_;
};

/// How many pixels of a frame have each fate.
struct FateCounts {
  std::array<size_t, std::size(kFateNames)> byFate{};
  size_t overwrittenWithoutDepth = 0;  // overwritten pixels whose cell a pixel without depth took
};

/// The fate of every pixel of a frame, row by row.
struct FrameFates {
  std::vector<Fate> fates;
  FateCounts counts;
};

/// Follows all pixels of a frame of 640 x 360 depth words.
FrameFates TraceFrame(const RunTables& tables, std::span<const uint16_t> words);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_PIXELTRACE_H_
