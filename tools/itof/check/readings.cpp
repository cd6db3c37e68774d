// Lists all readings.
#include "check/readings.h"

#include <algorithm>

namespace itoftool {
namespace {

std::vector<Reading> MakeReadings() {
  std::vector<Reading> readings;
  AddCameraReadings(readings);
  AddPoseReadings(readings);
  const auto applying = [&](const char* name) { return std::ranges::find(readings, name, &Reading::name)->apply; };
  readings.push_back({"the cameras exchanged and the pair inverted", "cameras exchanged", ReadingPart::kAll, false,
                      true,
                      [exchange = applying("the cameras exchanged"), invert = applying("the pair inverted")](
                          itof::CalibrationRecord& record) { return exchange(record) && invert(record); }});
  return readings;
}

}  // namespace

const std::vector<Reading>& Readings() {
  static const std::vector<Reading> readings = MakeReadings();
  return readings;
}

}  // namespace itoftool
