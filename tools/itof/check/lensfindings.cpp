// Checks lenses by their effect on the picture. The size of a coefficient says nothing: sound factory calibrations have
// values of 5 and more that nearly cancel between numerator and denominator.
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

/// The largest distance of a ToF pixel's ray from the axis, on the plane z = 1; nothing if a corner has no ray.
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

/// The same for the aux camera's ideal positions, over the pixels that land.
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

/// Returns false if the lens model is not valid as far as it is used, plus a margin. `used` is a radius on the plane
/// z = 1, or nothing if some pixels have no ray.
bool CheckReach(const char* name, const Camera& camera, std::optional<double> used, Findings& findings) {
  constexpr double kMargin = 1.1;
  const double reach = LensReach(camera.lens);
  if (used && reach >= kMargin * *used) return true;
  std::string text = Format(
      "The lens model of the %s camera has no ray for some corners of the frame: its tangential terms fold the "
      "picture.",
      name);
  if (std::isfinite(reach)) {
    const double circle = std::abs(Distort(camera.lens, {reach, 0}).x * camera.fx);
    text = Format(
               "The lens model of the %s camera is valid up to %.1f degrees off its axis, %.0f pixels from the "
               "principal point. There it folds back. ",
               name, std::atan(reach) * kDegrees, circle) +
           (used ? Format("Pixels are used up to %.1f degrees.", std::atan(*used) * kDegrees)
                 : "Some corners of the frame lie farther out, where no ray arrives.");
  }
  findings.push_back({Severity::kError, "lens-range", text,
                      "Calibrate with pictures that show the pattern in the corners, and use the rational model (eight "
                      "coefficients) for wide lenses. Check that the coefficients are in the order k1 k2 p1 p2 k3 k4 "
                      "k5 k6."});
  return false;
}

void CheckFieldOfView(const char* name, const Camera& camera, Findings& findings) {
  const double angle = MeasureFieldOfView(camera).horizontal;
  if (!(angle < 20 || angle > 130)) return;
  findings.push_back({Severity::kWarning, "field-of-view",
                      Format("The %s camera sees %.1f degrees from the left edge to the right. Its fx is %.1f pixels "
                             "in a frame 640 pixels wide. One pixel in the middle covers %.3f degrees.",
                             name, angle, camera.fx, std::atan(1 / camera.fx) * kDegrees),
                      "Check that the matrix is in pixels, and that it was made for the image size in the file."});
}

void CheckTangential(const CheckedPair& checked, WhichCamera which, Findings& findings) {
  constexpr double kLarge = 0.02, kNearZero = 0.01;
  const CameraFields written = ReadCamera(checked.record, which);
  const double p1 = written.lens[2], p2 = written.lens[3], k3 = written.lens[4];
  if (std::max(std::abs(p1), std::abs(p2)) <= kLarge || std::abs(k3) >= kNearZero) return;
  CameraFields other = written;
  std::rotate(other.lens + 2, other.lens + 3, other.lens + 5);
  findings.push_back(
      {Severity::kWarning, "tangential",
       Format(
           "The %s lens has the tangential coefficients p1 %.4g and p2 %.4g, and a k3 of %.4g. Real lenses are centred "
           "far better. In the order k1 k2 k3 p1 p2, k3 would be %.4g, p1 %.4g and p2 %.4g. ",
           written.Name(), p1, p2, k3, p1, p2, k3) +
           checked.Effect(WithCamera(checked.record, other)),
       "Write the coefficients in OpenCV's order: k1 k2 p1 p2 k3 k4 k5 k6."});
}

/// Checks that the library's three rounds of undistortion are enough for the ToF lens.
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
           "The library's three rounds of undistortion leave an error of up to %.2f pixels in the ToF image, at pixel "
           "(%d, %d). The median is %.2f, the 95th percentile %.2f.",
           spread.maximum, spread.where.x, spread.where.y, spread.median, spread.percentile95),
       "If the coefficients are right, this is a limit of the alignment. Expect pixels near there to be off by this "
       "error times the ratio of the focal lengths; \"itof calibration show\" prints the alignment's error. If that is "
       "too much, leave out the edges of the frame."});
}

}  // namespace

void CheckLenses(const CheckedPair& checked, Findings& findings) {
  const auto& [tof, aux, rotation, translation] = checked.pair;
  const bool isTofValid = CheckReach("ToF", tof, TofRadius(checked), findings);
  CheckReach("aux", aux, AuxRadius(checked), findings);
  CheckFieldOfView("ToF", tof, findings);
  CheckFieldOfView("aux", aux, findings);
  CheckTangential(checked, WhichCamera::kTof, findings);
  CheckTangential(checked, WhichCamera::kAux, findings);
  if (isTofValid) CheckUndistortion(checked, findings);
}

}  // namespace itoftool
