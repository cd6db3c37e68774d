// Declares the checks, and the data that they share: the calibration in exact geometry and in the library's tables.
#ifndef ITOF_TOOL_CHECK_CHECKEDPAIR_H_
#define ITOF_TOOL_CHECK_CHECKEDPAIR_H_

#include <cstdint>
#include <opencv2/core.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "check/findings.h"
#include "inspection/camerapair.h"
#include "inspection/pixeltrace.h"

namespace itoftool {

/// A calibration that the library accepts, in exact geometry and as the library aligns with it at a ratio of 1.
struct CheckedPair {
  explicit CheckedPair(const itof::CalibrationRecord& calibration);

  /// A sentence that says by how many pixels the aligned positions at 1 m differ between the record and another reading
  /// of the same numbers.
  std::string Effect(const itof::CalibrationRecord& otherReading) const;

  itof::CalibrationRecord record;
  CameraPair pair;
  RunTables tables;
  std::vector<cv::Point> pixels;  // one ToF pixel of each 8 x 8 block
};

// Each check appends its findings.

/// Checks the bytes of a calibration file. Returns the record if the library accepts it.
std::optional<itof::CalibrationRecord> CheckFile(std::span<const uint8_t> bytes, Findings& findings);

/// Returns false if the matrix is not a rotation. Checks that depend on the rotation are meaningless then.
bool CheckRotation(const CheckedPair& checked, Findings& findings);
void CheckTranslation(const CheckedPair& checked, Findings& findings);
/// Checks that both cameras look at the same scene, as written and with other readings of the extrinsics.
void CheckDirection(const CheckedPair& checked, Findings& findings);

/// Returns false if a matrix is not in pixels. Checks of what its camera sees are meaningless then.
bool CheckMatrices(const CheckedPair& checked, Findings& findings);

void CheckLenses(const CheckedPair& checked, Findings& findings);

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_CHECKEDPAIR_H_
