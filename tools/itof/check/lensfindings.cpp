// Lenses are never judged by the size of their coefficients, since sound factory sets hold values of 5 and more that
// divide each other out, but by what they do to the picture.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "check/camerafields.h"
#include "check/checkedpair.h"
#include "framesize.h"
#include "inspection/comparison.h"
#include "support/text.h"

namespace itoftool {
namespace {

constexpr double kDegrees = 180 / std::numbers::pi;

/// How far off the axis, on the plane z = 1, the ToF camera's pixels are; nothing if some have no ray.
std::optional<double> TofRadius(const CheckedPair& checked) {
  constexpr double kRight = itof::kFrameWidth - 1, kBottom = itof::kFrameHeight - 1;
  const cv::Point2d corners[] = {{0, 0}, {kRight, 0}, {0, kBottom}, {kRight, kBottom}};
  double radius = 0;
  for (const cv::Point2d& ray : Rays(checked.pair.tof, corners)) {
    if (std::isnan(ray.x)) return std::nullopt;
    radius = std::max(radius, cv::norm(ray));
  }
  return radius;
}

/// The same for the ideal positions of the aux camera that pixels land from.
double AuxRadius(const CheckedPair& checked) {
  const itof::CameraModel& aux = checked.tables.Context().auxModel;
  double radius = 0;
  for (const uint16_t code : kCompareDepths) {
    for (const cv::Point& pixel : checked.pixels) {
      const PixelTrace trace = checked.tables.Trace(pixel.x, pixel.y, code);
      if (trace.fate != Fate::kLanded) continue;
      radius = std::max(radius, std::hypot((trace.ideal.x - aux.cx) * aux.invFx, (trace.ideal.y - aux.cy) * aux.invFy));
    }
  }
  return radius;
}

/// False if the lens does not hold as far as it is used.
bool CheckReach(const char* name, const Camera& camera, std::optional<double> used, Findings& findings) {
  constexpr double kMargin = 1.1;
  const double reach = LensReach(camera.lens);
  if (used && reach >= kMargin * *used) return true;
  std::string text = Format(
      "The lens model of the %s camera has no ray for some of the frame's corners: its tangential "
      "terms fold the picture.",
      name);
  if (std::isfinite(reach)) {
    const double circle = std::abs(Distort(camera.lens, {reach, 0}).x * camera.fx);
    text = Format(
               "The lens model of the %s camera holds up to %.1f degrees off its axis, %.0f pixels from the principal "
               "point; there it folds back, and ",
               name, std::atan(reach) * kDegrees, circle) +
           (used ? Format("pixels are used up to %.1f degrees.", std::atan(*used) * kDegrees)
                 : "some of the frame's corners lie farther out, where no ray comes from.");
  }
  findings.push_back(
      {Severity::kError, "lens-range", text,
       "Calibrate with pictures that show the target in the corners, and take the rational model (eight "
       "coefficients) for wide lenses. See that the coefficients stand in the order k1 k2 p1 p2 k3 k4 k5 k6."});
  return false;
}

void CheckFieldOfView(const char* name, const Camera& camera, Findings& findings) {
  const double angle = MeasureFieldOfView(camera).horizontal;
  if (!(angle < 20 || angle > 130)) return;
  findings.push_back(
      {Severity::kWarning, "field-of-view",
       Format(
           "The %s camera sees %.1f degrees from the left to the right edge; fx is %.1f pixels in a frame of 640. One "
           "pixel in the middle covers %.3f degrees.",
           name, angle, camera.fx, std::atan(1 / camera.fx) * kDegrees),
       "See that the matrix is in pixels, and that the image size beside it is the one that it was made with."});
}

void CheckTangential(const CheckedPair& checked, PickCamera pick, Findings& findings) {
  constexpr double kLarge = 0.02, kNearZero = 0.01;
  itof::CalibrationRecord reordered = checked.record;
  const CameraFields camera = pick(reordered);
  const double p1 = camera.Coefficient(2), p2 = camera.Coefficient(3), k3 = camera.Coefficient(4);
  if (std::max(std::abs(p1), std::abs(p2)) <= kLarge || std::abs(k3) >= kNearZero) return;
  std::rotate(camera.lens + 2, camera.lens + 3, camera.lens + 5);
  findings.push_back(
      {Severity::kWarning, "tangential",
       Format(
           "The %s lens has tangential coefficients p1 %.4g, p2 %.4g beside a k3 of %.4g. Real lenses are centred far "
           "better; in the order k1 k2 k3 p1 p2, k3 would be %.4g, p1 %.4g and p2 %.4g. ",
           camera.name, p1, p2, k3, p1, p2, k3) +
           checked.Effect(reordered),
       "Write the coefficients in OpenCV's order: k1 k2 p1 p2 k3 k4 k5 k6."});
}

/// The library inverts the ToF lens by three rounds; some lenses would need more.
void CheckUndistortion(const CheckedPair& checked, Findings& findings) {
  constexpr double kVisible = 0.5;  // pixels
  const Camera& tof = checked.pair.tof;
  std::vector<cv::Point2d> exact = Rays(tof, checked.pixels), library;
  for (cv::Point2d& position : exact) position = {tof.cx + tof.fx * position.x, tof.cy + tof.fy * position.y};
  for (const cv::Point& pixel : checked.pixels) {
    library.push_back(checked.tables.Trace(pixel.x, pixel.y, 1000).undistorted);
  }
  const Spread spread = MeasureSpread(checked.pixels, library, exact);
  if (spread.maximum <= kVisible) return;
  findings.push_back(
      {Severity::kWarning, "undistortion",
       Format(
           "Three rounds do not undo the ToF lens: they leave up to %.2f pixels, at pixel (%d, %d); median %.2f, 95 %% "
           "of the pixels below %.2f.",
           spread.maximum, spread.where.x, spread.where.y, spread.median, spread.percentile95),
       "No other file helps: the lens is as it is. Expect pixels near there to be off by that much, times the ratio of "
       "the focal lengths; \"itof calibration show\" says how far. Leave the edges out where that is too much."});
}

}  // namespace

void CheckLenses(const CheckedPair& checked, Findings& findings) {
  const auto& [tof, aux, rotation, translation] = checked.pair;
  const bool tofHolds = CheckReach("ToF", tof, TofRadius(checked), findings);
  CheckReach("aux", aux, AuxRadius(checked), findings);
  CheckFieldOfView("ToF", tof, findings);
  CheckFieldOfView("aux", aux, findings);
  CheckTangential(checked, TofFields, findings);
  CheckTangential(checked, AuxFields, findings);
  if (tofHolds) CheckUndistortion(checked, findings);
}

}  // namespace itoftool
