// Runs the checks of a calibration in order: first the file's bytes, then the geometry that they describe.
#include "check/findings.h"

#include <algorithm>
#include <iterator>

#include "check/checkedpair.h"
#include "support/text.h"

namespace itoftool {

std::vector<Finding> CheckCalibration(std::span<const uint8_t> bytes) {
  std::vector<Finding> findings;
  const std::optional<itof::CalibrationRecord> record = CheckFile(bytes, findings);
  if (record) std::ranges::copy(CheckGeometry(*record), std::back_inserter(findings));
  return findings;
}

std::vector<Finding> CheckGeometry(const itof::CalibrationRecord& record) {
  const CheckedPair checked(record);
  Findings findings;
  const bool isRotation = CheckRotation(checked, findings);
  const bool inPixels = CheckMatrices(checked, findings);
  if (isRotation && inPixels) CheckLenses(checked, findings);
  CheckTranslation(checked, findings);
  if (isRotation && inPixels) CheckDirection(checked, findings);
  return findings;
}

size_t CountErrors(const std::vector<Finding>& findings) {
  return static_cast<size_t>(std::ranges::count(findings, Severity::kError, &Finding::severity));
}

std::string CountText(const std::vector<Finding>& findings) {
  const size_t errors = CountErrors(findings), warnings = findings.size() - errors;
  return Format("%zu error%s, %zu warning%s", errors, errors == 1 ? "" : "s", warnings, warnings == 1 ? "" : "s");
}

}  // namespace itoftool
