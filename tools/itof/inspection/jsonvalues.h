// Writes the values that several commands print as JSON: numbers, pixels, positions and spreads.
#ifndef ITOF_TOOL_INSPECTION_JSONVALUES_H_
#define ITOF_TOOL_INSPECTION_JSONVALUES_H_

#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <string>

#include "inspection/camerapair.h"
#include "inspection/comparison.h"

namespace itoftool {

/// Keeps the order of its keys.
using Json = nlohmann::ordered_json;

/// The number; null if it is not finite.
inline Json Number(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

inline Json JsonPixel(cv::Point pixel) { return {pixel.x, pixel.y}; }

/// The position; null if it is nowhere.
inline Json JsonPosition(cv::Point2d position) {
  return IsNowhere(position) ? Json(nullptr) : Json{Number(position.x), Number(position.y)};
}

/// An object for what was measured at one depth.
inline Json AtDepth(uint16_t code) { return {{"depth_mm", code}}; }

/// A spread; all but the count are null if no pixel was compared.
inline Json SpreadJson(const Spread& spread) {
  const auto value = [&](const Json& json) { return spread.count > 0 ? json : Json(nullptr); };
  return {{"pixels_compared", spread.count},
          {"median", value(spread.median)},
          {"maximum", value(spread.maximum)},
          {"maximum_at_tof_pixel", value(JsonPixel(spread.where))}};
}

/// The document as text. File names may contain any bytes, JSON only UTF-8; the others are replaced.
inline std::string JsonText(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_JSONVALUES_H_
