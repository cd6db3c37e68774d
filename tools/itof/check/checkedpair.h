// Declares the checks, and the data that they share: the calibration in exact geometry and in the library's tables.
#ifndef ITOF_TOOL_CHECK_CHECKEDPAIR_H_
#define ITOF_TOOL_CHECK_CHECKEDPAIR_H_

#include <cstdint>
#include <functional>
#include <opencv2/core.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "check/explanations.h"
#include "check/findings.h"
#include "check/flaws.h"
#include "inspection/camerapair.h"
#include "inspection/pixeltrace.h"

namespace itoftool {

/// Other readings of a calibration without a flaw, or with much less of it.
struct Alternatives {
  std::vector<OtherReading> readings;  // the likeliest first
  bool areWeak = false;                // whether they would remove such a flaw from nearly any calibration
  std::string text;                    // names them, starting with a blank; empty without readings
};

/// A calibration that the library accepts, in exact geometry and as the library aligns with it at a ratio of 1.
struct CheckedPair {
  explicit CheckedPair(const itof::CalibrationRecord& calibration);

  /// The readings without `flaw`. `evidence` gives a few words on a reading, in numbers.
  Alternatives ReadingsWithout(Flaw flaw, const std::function<std::string(const Explanation&)>& evidence = {}) const;

  /// A sentence that says by how many pixels the aligned positions at 1 m differ between the record and another reading
  /// of the same numbers.
  std::string Effect(const itof::CalibrationRecord& otherReading) const;

  itof::CalibrationRecord record;
  CameraPair pair;
  bool isRotation;  // whether the rotation is orthonormal
  bool isInPixels;  // whether both matrices are in pixels
  Flaws flaws;
  std::vector<Explanation> explanations;  // none unless isRotation and isInPixels
  RunTables tables;
  std::vector<cv::Point> pixels;  // one ToF pixel of each 8 x 8 block
};

// Each check appends its findings.

/// Checks the bytes of a calibration file. Returns the record if the library accepts it.
std::optional<itof::CalibrationRecord> CheckFile(std::span<const uint8_t> bytes, Findings& findings);

/// Checks that the matrix is a rotation.
void CheckRotation(const CheckedPair& checked, Findings& findings);
void CheckTranslation(const CheckedPair& checked, Findings& findings);
/// Checks that both cameras look at the same scene.
void CheckDirection(const CheckedPair& checked, Findings& findings);

void CheckMatrices(const CheckedPair& checked, Findings& findings);

void CheckLenses(const CheckedPair& checked, Findings& findings);

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_CHECKEDPAIR_H_
