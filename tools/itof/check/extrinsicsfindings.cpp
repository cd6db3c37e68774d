// Checks rotation and translation: their unit, and that they lead from the ToF camera to the aux camera.
#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

#include "camera/rotation.h"
#include "check/checkedpair.h"
#include "framesize.h"
#include "inspection/comparison.h"
#include "support/text.h"

namespace itoftool {
namespace {

/// How much of the ToF view lands in the aux view with one reading of the extrinsics.
struct ReadingOverlap {
  double shares[std::size(kCompareDepths)];
  double mean;
  std::string text;
};

ReadingOverlap MeasureReading(CameraPair pair, const char* name, const cv::Matx33d& rotation,
                              const cv::Vec3d& translation) {
  pair.rotation = rotation;
  pair.translation = translation;
  ReadingOverlap overlap{};
  auto& shares = overlap.shares;
  for (size_t i = 0; i < std::size(shares); ++i) {
    shares[i] = Overlap(pair, kCompareDepths[i]);
    overlap.mean += shares[i] / std::size(kCompareDepths);
  }
  overlap.text = Format("%s, %.0f %% of the ToF pixels land at 0.3 m, %.0f %% at 1 m, %.0f %% at 3 m.", name,
                        100 * shares[0], 100 * shares[1], 100 * shares[2]);
  return overlap;
}

void CheckOverlap(const CheckedPair& checked, Findings& findings) {
  constexpr double kLittle = 0.5, kClearlyMore = 0.2;
  const CameraPair& pair = checked.pair;
  const cv::Matx33d& r = pair.rotation;
  const cv::Vec3d& t = pair.translation;
  const ReadingOverlap written = MeasureReading(pair, "As written", r, t);
  std::string better;
  for (const ReadingOverlap& other : {MeasureReading(pair, "With the rotation transposed", r.t(), t),
                                      MeasureReading(pair, "With the pair inverted", r.t(), -(r.t() * t)),
                                      MeasureReading(pair, "With the translation times 1000", r, t * 1000),
                                      MeasureReading(pair, "With the translation divided by 1000", r, t / 1000)}) {
    if (other.mean > written.mean + kClearlyMore) better += " " + other.text;
  }
  if (!better.empty()) {
    findings.push_back({Severity::kWarning, "overlap", written.text + better,
                        "Compare with the stereo calibration: a point X in the ToF camera's coordinates is at R X + T "
                        "in the aux camera's."});
  } else if (*std::ranges::min_element(written.shares) < kLittle) {
    findings.push_back({Severity::kWarning, "overlap",
                        written.text + " No other reading of the extrinsics is clearly better.",
                        "If the cameras really point apart, or the aux camera sees far less, the file is correct. "
                        "Otherwise check both matrices and image sizes as well."});
  }
}

/// Checks that the rotation brings the centres of both views together; camera pairs are built to see the same things.
void CheckAim(const CheckedPair& checked, Findings& findings) {
  constexpr double kApart = 5;  // degrees
  const CameraPair& pair = checked.pair;
  const cv::Point2d centre[] = {{(itof::kFrameWidth - 1) / 2.0, (itof::kFrameHeight - 1) / 2.0}};
  const cv::Point2d tof = Rays(pair.tof, centre)[0], aux = Rays(pair.aux, centre)[0];
  const cv::Vec3d tofCentre(tof.x, tof.y, 1), auxCentre(aux.x, aux.y, 1);
  const double written = Angle(pair.rotation * tofCentre, auxCentre);
  const double transposed = Angle(pair.rotation.t() * tofCentre, auxCentre);
  if (!(written > kApart && transposed < written / 2)) return;
  const double pixelsPerDegree = pair.aux.fx * std::numbers::pi / 180;
  findings.push_back(
      {Severity::kWarning, "aim",
       Format(
           "The centres of the two views are %.1f degrees apart, about %.0f pixels in the aux view; with the rotation "
           "transposed, or the pair inverted, they would be %.1f degrees apart, about %.0f pixels.",
           written, written * pixelsPerDegree, transposed, transposed * pixelsPerDegree),
       "Check that the rotation takes the ToF camera's coordinates to the aux camera's, and is written row by row. To "
       "invert the pair, transpose the rotation R and replace the translation T by -R^T T."});
}

void CheckBaseline(const CheckedPair& checked, Findings& findings) {
  constexpr double kLeast = 0.5, kMost = 200;
  const cv::Vec3d& t = checked.pair.translation;
  const double baseline = cv::norm(t), sideways = std::hypot(t[0], t[1]);
  const auto parallax = [&](double length) { return checked.pair.aux.fx * length / 300; };  // at 0.3 m, pixels
  if (baseline == 0 && cv::norm(checked.pair.rotation - cv::Matx33d::eye()) < 1e-6) {
    findings.push_back(
        {Severity::kWarning, "no-extrinsics",
         Format("The rotation is the identity and the translation is zero: both cameras are in one place, and depth "
                "moves no pixel. A baseline of 25 mm would move pixels at 0.3 m by %.1f.",
                parallax(25)),
         "These look like default values. If the pair has been calibrated, write the result."});
  } else if (baseline < kLeast) {
    findings.push_back(
        {Severity::kWarning, "baseline",
         Format(
             "The cameras are %.4g depth codes apart. Is the translation in metres? Depth codes are usually "
             "millimetres. As written, parallax at 0.3 m is %.2f pixels; with the translation times 1000 it would be "
             "%.1f.",
             baseline, parallax(sideways), parallax(sideways * 1000)),
         "Write the translation in the unit of the depth codes."});
  } else if (baseline > kMost) {
    findings.push_back(
        {Severity::kWarning, "baseline",
         Format("The cameras are %.4g depth codes apart. No phone has 200 mm between two cameras. As written, parallax "
                "at 0.3 m is %.1f pixels; with the translation divided by 10 it would be %.1f, divided by 1000, %.1f.",
                baseline, parallax(sideways), parallax(sideways / 10), parallax(sideways / 1000)),
         "Write the translation in the unit of the depth codes, usually millimetres."});
  }
}

void CheckAxialTranslation(const CheckedPair& checked, Findings& findings) {
  const cv::Vec3d& t = checked.pair.translation;
  if (std::abs(t[2]) <= std::hypot(t[0], t[1])) return;
  const Approximation approximation = MeasureApproximation(checked.pair, checked.tables, 300);
  findings.push_back(
      {Severity::kWarning, "axial-translation",
       Format(
           "The translation (%.4g, %.4g, %.4g) is mostly along the optical axis, and the alignment ignores that part: "
           "at 0.3 m it is up to %.1f pixels off the exact projection.",
           t[0], t[1], t[2], approximation.error.maximum),
       "Check that the three entries are in the order x, y, z. In the aux camera's coordinates x points right, y down "
       "and z forward."});
}

}  // namespace

bool CheckRotation(const CheckedPair& checked, Findings& findings) {
  const cv::Matx33d& r = checked.pair.rotation;
  const double error = OrthonormalityError(r);
  if (error > kOrthonormal) {
    const cv::SVD svd((cv::Mat(r)));
    const cv::Mat nearest = svd.u * svd.vt;
    itof::CalibrationRecord other = checked.record;
    for (int i = 0; i < 9; ++i) other.rotation[i] = static_cast<float>(nearest.at<double>(i / 3, i % 3));
    findings.push_back({Severity::kError, "rotation",
                        Format("The rotation is not orthonormal: R times its transpose is up to %.3g off the identity. "
                               "The other reading is the nearest rotation. ",
                               error) +
                            checked.Effect(other),
                        "Write the rotation matrix of the stereo calibration, nine entries row by row. Convert a "
                        "rotation vector to a matrix first."});
    return false;
  }
  if (cv::determinant(r) < 0) {
    findings.push_back({Severity::kError, "mirror",
                        "The rotation is a mirror: its determinant is -1, which swaps left and right or up and down.",
                        "Look for an axis with the wrong sign, for example y up instead of down, and negate that row "
                        "or column. In both cameras x points right, y down and z forward."});
    return false;
  }
  return true;
}

void CheckTranslation(const CheckedPair& checked, Findings& findings) {
  CheckBaseline(checked, findings);
  CheckAxialTranslation(checked, findings);
}

void CheckDirection(const CheckedPair& checked, Findings& findings) {
  CheckOverlap(checked, findings);
  CheckAim(checked, findings);
}

}  // namespace itoftool
