// Checks one of several calibration files, and sums up what was found.
#ifndef ITOF_TOOL_FLEET_UNIT_H_
#define ITOF_TOOL_FLEET_UNIT_H_

#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "calibration/calibrationrecord.h"
#include "check/findings.h"
#include "inspection/comparison.h"

namespace itoftool {

/// A calibration file and what the check found in it.
struct CheckedUnit {
  std::string path;
  Findings findings;
  std::string content;                                // at most the 228 bytes that count; empty if unreadable
  std::optional<itof::CalibrationRecord> record;      // nothing if itof_init refuses the file
  PerDepth<std::vector<cv::Point2d>> positions = {};  // aligned positions of FleetPixels; empty without a record
};

/// The ToF pixels at which units are compared. They lie farther apart than those of the findings, since a fleet keeps
/// the positions of all its units.
std::vector<cv::Point> FleetPixels();

/// Checks the bytes of a file, against the calibration of a good unit if one is given.
CheckedUnit CheckUnit(const std::string& path, std::span<const uint8_t> bytes,
                      const std::optional<itof::CalibrationRecord>& reference);

/// The name of the only finding of a file that cannot be read; its text is the reason.
inline constexpr char kUnreadable[] = "unreadable";

/// A unit whose file cannot be read, for the reason given.
CheckedUnit UnreadableUnit(const std::string& path, const std::string& reason);

/// The first finding of the greatest severity; null if there is none.
const Finding* WorstFinding(const Findings& findings);

/// How far the likeliest other reading of a finding moves pixels at 1 m, at most; of several findings the largest.
/// Nothing if of no finding's reading enough pixels land to be compared.
std::optional<double> LargestEffect(const Findings& findings);

}  // namespace itoftool

#endif  // ITOF_TOOL_FLEET_UNIT_H_
