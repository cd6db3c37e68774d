// Checks one of several calibration files, and sums up what was found.
#include "fleet/unit.h"

#include <algorithm>
#include <iterator>

#include "check/checkedpair.h"
#include "check/reference.h"

namespace itoftool {

std::vector<cv::Point> FleetPixels() { return TofPixels(16); }

CheckedUnit CheckUnit(const std::string& path, std::span<const uint8_t> bytes,
                      const std::optional<itof::CalibrationRecord>& reference) {
  CheckedUnit unit{.path = path, .findings = {}, .content = {}, .record = {}};
  const auto used = bytes.first(std::min(bytes.size(), itof::kCalibrationRecordSize));
  unit.content.assign(used.begin(), used.end());
  unit.record = CheckFile(bytes, unit.findings);
  if (!unit.record) return unit;
  std::ranges::move(reference ? CheckAgainst(*reference, *unit.record) : CheckGeometry(*unit.record),
                    std::back_inserter(unit.findings));
  const RunTables tables(*unit.record, 1);
  for (size_t i = 0; i < std::size(kCompareDepths); ++i) {
    unit.positions[i] = AlignedPositions(tables, FleetPixels(), kCompareDepths[i]);
  }
  return unit;
}

CheckedUnit UnreadableUnit(const std::string& path, const std::string& reason) {
  return {.path = path,
          .findings = {{Severity::kError, kUnreadable, "", reason, "Check the path and its permissions."}},
          .content = {},
          .record = {}};
}

const Finding* WorstFinding(const Findings& findings) {
  const auto worst = std::ranges::max_element(findings, {}, &Finding::severity);
  return worst == findings.end() ? nullptr : &*worst;
}

std::optional<double> LargestEffect(const Findings& findings) {
  const size_t compared = TofPixels(8).size();  // those of the readings
  std::optional<double> largest;
  for (const Finding& finding : findings) {
    if (finding.readings.empty() || IsHardlyAny(finding.readings.front().moved, compared)) continue;
    largest = std::max(largest.value_or(0), finding.readings.front().moved.maximum);
  }
  return largest;
}

}  // namespace itoftool
