// What the judges of a calibration's geometry share, and what each of them judges.
#ifndef ITOF_TOOL_CHECK_CHECKEDPAIR_H_
#define ITOF_TOOL_CHECK_CHECKEDPAIR_H_

#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "check/findings.h"
#include "inspection/camerapair.h"
#include "inspection/pixeltrace.h"

namespace itoftool {

/// A calibration that the library accepts, in exact geometry and as the library aligns with it at a ratio of 1.
struct JudgedPair {
  explicit JudgedPair(const itof::CalibrationRecord& judged);

  /// By how many pixels the aligned positions differ from those of another reading of the file, as a sentence.
  std::string Effect(const itof::CalibrationRecord& otherReading) const;

  itof::CalibrationRecord record;
  CameraPair pair;
  RunTables tables;
  std::vector<cv::Point> pixels;  // those that are looked at
};

using Findings = std::vector<Finding>;

/// False if the rotation is none, so that nothing can be said about what the cameras have in common.
bool JudgeRotation(const JudgedPair& judged, Findings& findings);
void JudgeTranslation(const JudgedPair& judged, Findings& findings);
/// Whether the cameras look at the same thing, as written and with the extrinsics read in other ways.
void JudgeDirection(const JudgedPair& judged, Findings& findings);

/// False if a matrix is in other units, so that nothing can be said about what its camera sees.
bool JudgeMatrices(const JudgedPair& judged, Findings& findings);

void JudgeLenses(const JudgedPair& judged, Findings& findings);

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_CHECKEDPAIR_H_
