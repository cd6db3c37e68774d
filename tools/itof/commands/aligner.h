// One run of the library's three functions, used as a host uses them.
#ifndef ITOF_TOOL_COMMANDS_ALIGNER_H_
#define ITOF_TOOL_COMMANDS_ALIGNER_H_

#include <cstdint>
#include <vector>

#include "calibration/calibrationrecord.h"

namespace itoftool {

/// A run with one calibration and one ratio. The library holds one aligner per process, so there is one of these at a
/// time. The lines that the library prints and logs are let through or kept back, as `showLines` says.
class Aligner {
 public:
  /// `calibration` must be one that FirstCalibrationFault accepts. Throws std::bad_alloc.
  Aligner(const itof::CalibrationRecord& calibration, float ratio, bool showLines);
  ~Aligner();
  Aligner(const Aligner&) = delete;
  Aligner& operator=(const Aligner&) = delete;

  /// Turns 640 x 360 depth words into aligned words. Returns the milliseconds that the library's call took.
  double Align(std::vector<uint16_t>& words) const;

 private:
  float ratio_;
  bool showLines_;
};

}  // namespace itoftool

#endif  // ITOF_TOOL_COMMANDS_ALIGNER_H_
