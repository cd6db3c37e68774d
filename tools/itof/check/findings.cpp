// Runs all checks in order: first those of the file's bytes, then those of the geometry.
#include "check/findings.h"

#include <algorithm>
#include <iterator>

#include "check/checkedpair.h"
#include "support/text.h"

namespace itoftool {
namespace {

size_t Count(const Findings& findings, Severity severity) {
  return static_cast<size_t>(std::ranges::count(findings, severity, &Finding::severity));
}

}  // namespace

Findings CheckCalibration(std::span<const uint8_t> bytes) {
  Findings findings;
  const std::optional<itof::CalibrationRecord> record = CheckFile(bytes, findings);
  if (record) std::ranges::copy(CheckGeometry(*record), std::back_inserter(findings));
  return findings;
}

Findings CheckGeometry(const itof::CalibrationRecord& record) {
  const CheckedPair checked(record);
  // Views are meaningless with a matrix that is not a rotation or not in pixels.
  const bool hasViews = checked.isRotation && checked.isInPixels;
  Findings findings;
  CheckRotation(checked, findings);
  CheckMatrices(checked, findings);
  if (hasViews) CheckLenses(checked, findings);
  CheckTranslation(checked, findings);
  if (hasViews) CheckDirection(checked, findings);
  return findings;
}

const char* SeverityName(Severity severity) {
  switch (severity) {
    case Severity::kNote:
      return "note";
    case Severity::kWarning:
      return "warning";
    default:
      return "error";
  }
}

size_t CountErrors(const Findings& findings) { return Count(findings, Severity::kError); }

std::string CountText(const Findings& findings) {
  const auto counted = [&](Severity severity) {
    const size_t count = Count(findings, severity);
    return Format("%zu %s%s", count, SeverityName(severity), count == 1 ? "" : "s");
  };
  const bool hasNotes = Count(findings, Severity::kNote) > 0;
  return counted(Severity::kError) + ", " + counted(Severity::kWarning) +
         (hasNotes ? ", " + counted(Severity::kNote) : "");
}

}  // namespace itoftool
