// Writes findings as JSON, for programs.
#include "check/findingsjson.h"

#include "inspection/jsonvalues.h"

namespace itoftool {

Json FindingsJson(const Findings& findings) {
  Json list = Json::array();
  for (const Finding& finding : findings) {
    Json readings = Json::array();
    for (const OtherReading& reading : finding.readings) {
      const Spread& moved = reading.moved;
      const auto pixels = [&](double value) { return moved.count > 0 ? Number(value) : Json(nullptr); };
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
