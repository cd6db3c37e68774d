// Checks lenses by their effect on the picture. The size of a coefficient says nothing: sound factory calibrations have
// values of 5 and more that nearly cancel between numerator and denominator.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

#include "check/camerafields.h"
#include "check/checkedpair.h"
#include "framesize.h"
#include "inspection/comparison.h"
#include "support/text.h"

namespace itoftool {
namespace {

constexpr double kDegrees = 180 / std::numbers::pi;

/// Checks that a lens model is valid as far as it is used, plus a margin. `used` and `reach` are radii on the plane
/// z = 1; `used` is not-a-number if some corners of the frame have no ray.
void CheckReach(const CheckedPair& checked, const char* name, Flaw flaw, const Camera& camera, double used,
                double reach, Findings& findings) {
  if (!checked.flaws.Has(flaw)) return;
  std::string text = Format(
      "The lens model of the %s camera has no ray for some corners of the frame: its tangential terms fold the "
      "picture.",
      name);
  if (std::isfinite(reach)) {
    const double circle = std::abs(Distort(camera.lens, {reach, 0}).x * camera.fx);
    // Where the denominator vanishes, the model throws points to infinity.
    const bool folds = circle < 10 * itof::kFrameWidth;
    text = Format("The lens model of the %s camera is valid up to %.1f degrees off its axis", name,
                  std::atan(reach) * kDegrees) +
           (folds ? Format(", %.0f pixels from the principal point. There it folds back. ", circle)
                  : ", where its denominator vanishes. ") +
           (std::isnan(used) ? "Some corners of the frame lie farther out, which the lens model does not reach."
                             : Format("Pixels are used up to %.1f degrees.", std::atan(used) * kDegrees));
  }
  const Alternatives others = checked.ReadingsWithout(flaw);
  findings.push_back(
      {Severity::kError, "lens-range", name, text + others.text,
       "Check that fx and fy are for the image size in the file, and that the coefficients are in the order "
       "k1 k2 p1 p2 k3 k4 k5 k6. If they are, calibrate with pictures that show the pattern in the "
       "corners, and use the rational model (eight coefficients) for wide lenses.",
       others.readings});
}

void CheckFieldOfView(const CheckedPair& checked, const char* name, Flaw flaw, const Camera& camera,
                      Findings& findings) {
  if (!checked.flaws.Has(flaw)) return;
  const double angle = MeasureFieldOfView(camera).horizontal;
  const Alternatives others = checked.ReadingsWithout(flaw);
  findings.push_back({Severity::kWarning, "field-of-view", name,
                      Format("The %s camera sees %.1f degrees from the left edge to the right. Its fx is %.1f pixels "
                             "in a frame 640 pixels wide. One pixel in the middle covers %.3f degrees.",
                             name, angle, camera.fx, std::atan(1 / camera.fx) * kDegrees) +
                          others.text,
                      "Check that the matrix is in pixels, and that it was made for the image size in the file.",
                      others.readings});
}

void CheckTangential(const CheckedPair& checked, WhichCamera which, Flaw flaw, Findings& findings) {
  if (!checked.flaws.Has(flaw)) return;
  const CameraFields written = ReadCamera(checked.record, which);
  const double p1 = written.lens[2], p2 = written.lens[3], k3 = written.lens[4];
  std::string text = Format(
      "The %s lens has the tangential coefficients p1 %.4g and p2 %.4g, and a k3 of %.4g. Real lenses are centred far "
      "better. In the order k1 k2 k3 p1 p2, k3 would be %.4g, p1 %.4g and p2 %.4g.",
      written.Name(), p1, p2, k3, p1, p2, k3);
  const Alternatives others = checked.ReadingsWithout(flaw);
  text += others.text;
  if (std::ranges::all_of(std::span(written.lens).subspan<4>(), [](double k) { return k == 0; })) {
    text += " The four coefficients may also be k1 to k4 of a fisheye calibration, a model that the file cannot hold.";
  }
  findings.push_back({Severity::kWarning, "tangential", written.Name(), text,
                      "Write the coefficients in OpenCV's order: k1 k2 p1 p2 k3 k4 k5 k6. If they come from a fisheye "
                      "calibration, calibrate with the rational model instead.",
                      others.readings});
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
      {Severity::kNote, "undistortion", "ToF",
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
  const Flaws& flaws = checked.flaws;
  CheckReach(checked, "ToF", Flaw::kTofLensRange, tof, flaws.tofRadius, flaws.tofReach, findings);
  CheckReach(checked, "aux", Flaw::kAuxLensRange, aux, flaws.auxRadius, flaws.auxReach, findings);
  CheckFieldOfView(checked, "ToF", Flaw::kTofFieldOfView, tof, findings);
  CheckFieldOfView(checked, "aux", Flaw::kAuxFieldOfView, aux, findings);
  CheckTangential(checked, WhichCamera::kTof, Flaw::kTofTangential, findings);
  CheckTangential(checked, WhichCamera::kAux, Flaw::kAuxTangential, findings);
  if (!flaws.Has(Flaw::kTofLensRange)) CheckUndistortion(checked, findings);
}

}  // namespace itoftool
