// Aligns frames with the library's three functions, as a host does.
#ifndef ITOF_TOOL_COMMANDS_ALIGNER_H_
#define ITOF_TOOL_COMMANDS_ALIGNER_H_

#include <cstdint>
#include <vector>

#include "calibration/calibrationrecord.h"

namespace itoftool {

/// One run, with one calibration and one ratio. The library holds one aligner per process, so only one object may exist
/// at a time.
class Aligner {
 public:
  /// `calibration` must have no fault that FirstCalibrationFault finds. `showLines` says whether the lines that the
  /// library prints and logs appear. Throws std::bad_alloc.
  Aligner(const itof::CalibrationRecord& calibration, float ratio, bool showLines);
  ~Aligner();
  Aligner(const Aligner&) = delete;
  Aligner& operator=(const Aligner&) = delete;

  /// Replaces 640 x 360 depth words with the aligned words. Returns how many milliseconds the library's call took.
  double Align(std::vector<uint16_t>& words) const;

 private:
  float ratio_;
  bool showLines_;
};

}  // namespace itoftool

#endif  // ITOF_TOOL_COMMANDS_ALIGNER_H_
