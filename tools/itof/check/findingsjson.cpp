// Writes findings as JSON, for programs.
#include "check/findingsjson.h"

#include "inspection/jsonvalues.h"

namespace itoftool {

Json FindingsJson(const Findings& findings) {
  const size_t compared = TofPixels(8).size();  // those of the readings
  Json list = Json::array();
  for (const Finding& finding : findings) {
    Json readings = Json::array();
    for (const OtherReading& reading : finding.readings) {
      const Spread& moved = reading.moved;
      const bool isCompared = !IsHardlyAny(moved, compared);
      const auto pixels = [&](double value) { return isCompared ? Number(value) : Json(nullptr); };
      readings.push_back({{"reading", reading.name},
                          {"median_pixels", pixels(moved.median)},
                          {"maximum_pixels", pixels(moved.maximum)}});
    }
    list.push_back({{"severity", SeverityName(finding.severity)},
                    {"code", finding.name},
                    {"camera", finding.camera.empty() ? Json(nullptr) : Json(finding.camera)},
                    {"text", finding.text},
                    {"advice", finding.advice},
                    {"readings", readings}});
  }
  return list;
}

}  // namespace itoftool
