// Runs all checks in order: first those of the file's bytes, then those of the geometry.
#include "check/findings.h"

#include <algorithm>
#include <iterator>

#include "check/checkedpair.h"
#include "support/text.h"

namespace itoftool {

Findings CheckCalibration(std::span<const uint8_t> bytes) {
  Findings findings;
  const std::optional<itof::CalibrationRecord> record = CheckFile(bytes, findings);
  if (record) std::ranges::copy(CheckGeometry(*record), std::back_inserter(findings));
  return findings;
}

Findings CheckGeometry(const itof::CalibrationRecord& record) {
  const CheckedPair checked(record);
  Findings findings;
  const bool isRotation = CheckRotation(checked, findings);
  const bool areInPixels = CheckMatrices(checked, findings);
  if (isRotation && areInPixels) CheckLenses(checked, findings);
  CheckTranslation(checked, findings);
  if (isRotation && areInPixels) CheckDirection(checked, findings);
  return findings;
}

size_t CountErrors(const Findings& findings) {
  return static_cast<size_t>(std::ranges::count(findings, Severity::kError, &Finding::severity));
}

std::string CountText(const Findings& findings) {
  const size_t errors = CountErrors(findings), warnings = findings.size() - errors;
  return Format("%zu error%s, %zu warning%s", errors, errors == 1 ? "" : "s", warnings, warnings == 1 ? "" : "s");
}

}  // namespace itoftool
