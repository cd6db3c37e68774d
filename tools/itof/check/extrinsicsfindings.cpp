// Rotation and translation: in the right unit, and from the ToF camera to the aux camera, not the other way round.
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

/// A reading of the extrinsics, and how much of the ToF view it lays on the aux view.
struct Reading {
  Reading(CameraPair pair, const char* name, const cv::Matx33d& rotation, const cv::Vec3d& translation) {
    pair.rotation = rotation;
    pair.translation = translation;
    for (size_t i = 0; i < std::size(kCompareDepths); ++i) {
      overlaps[i] = Overlap(pair, kCompareDepths[i]);
      mean += overlaps[i] / std::size(kCompareDepths);
    }
    words = Format("%s, %.0f %% of the ToF pixels land at 0.3 m, %.0f %% at 1 m, %.0f %% at 3 m.", name,
                   100 * overlaps[0], 100 * overlaps[1], 100 * overlaps[2]);
  }

  double overlaps[std::size(kCompareDepths)];
  double mean = 0;
  std::string words;
};

void CheckOverlap(const CheckedPair& checked, Findings& findings) {
  constexpr double kLittle = 0.5, kClearlyMore = 0.2;
  const CameraPair& pair = checked.pair;
  const cv::Matx33d& r = pair.rotation;
  const cv::Vec3d& t = pair.translation;
  const Reading written(pair, "As written", r, t);
  std::string better;
  for (const Reading& other : {Reading(pair, "With the rotation transposed", r.t(), t),
                               Reading(pair, "With the pair inverted", r.t(), -(r.t() * t)),
                               Reading(pair, "With the translation times 1000", r, t * 1000),
                               Reading(pair, "With the translation divided by 1000", r, t / 1000)}) {
    if (other.mean > written.mean + kClearlyMore) better += " " + other.words;
  }
  if (!better.empty()) {
    findings.push_back(
        {Severity::kWarning, "overlap", written.words + better,
         "Compare with the stereo calibration: a point X of the ToF camera lies at R X + T for the aux camera."});
  } else if (*std::ranges::min_element(written.overlaps) < kLittle) {
    findings.push_back({Severity::kWarning, "overlap",
                        written.words + " No other reading of the extrinsics gives clearly more.",
                        "If the cameras really look apart, or the aux camera sees far less, all is well; else see both "
                        "matrices and image sizes, too."});
  }
}

/// Pairs are built to look at one thing, so the rotation should bring the middles of both views together.
void CheckAim(const CheckedPair& checked, Findings& findings) {
  constexpr double kApart = 5;  // degrees
  const CameraPair& pair = checked.pair;
  const cv::Point2d middle[] = {{(itof::kFrameWidth - 1) / 2.0, (itof::kFrameHeight - 1) / 2.0}};
  const cv::Point2d tof = Rays(pair.tof, middle)[0], aux = Rays(pair.aux, middle)[0];
  const cv::Vec3d tofMiddle(tof.x, tof.y, 1), auxMiddle(aux.x, aux.y, 1);
  const double written = Angle(pair.rotation * tofMiddle, auxMiddle);
  const double transposed = Angle(pair.rotation.t() * tofMiddle, auxMiddle);
  if (!(written > kApart && transposed < written / 2)) return;
  const double pixels = pair.aux.fx * std::numbers::pi / 180;  // of a degree
  findings.push_back(
      {Severity::kWarning, "aim",
       Format("The middles of both views are %.1f degrees apart, some %.0f pixels of the aux view; with the rotation "
              "transposed, or the pair inverted, it would be %.1f degrees, %.0f pixels.",
              written, written * pixels, transposed, transposed * pixels),
       "See that the rotation takes the ToF camera's coordinates to the aux camera's, and stands row by row. The "
       "inverse is its transpose; then the translation changes, too."});
}

}  // namespace

bool CheckRotation(const CheckedPair& checked, Findings& findings) {
  const cv::Matx33d& r = checked.pair.rotation;
  const double off = OrthonormalityError(r);
  if (off > kOrthonormal) {
    const cv::SVD svd((cv::Mat(r)));
    const cv::Mat nearest = svd.u * svd.vt;
    itof::CalibrationRecord turned = checked.record;
    for (int i = 0; i < 9; ++i) turned.rotation[i] = static_cast<float>(nearest.at<double>(i / 3, i % 3));
    findings.push_back({Severity::kError, "rotation",
                        Format("The rotation is not orthonormal: R times its transpose is up to %.3g off the identity. "
                               "Take it as it is, or the nearest rotation. ",
                               off) +
                            checked.Effect(turned),
                        "Write the matrix that the stereo calibration gave, nine entries row by row. A rotation vector "
                        "has to be turned into a matrix first."});
    return false;
  }
  if (cv::determinant(r) < 0) {
    findings.push_back(
        {Severity::kError, "mirror",
         "The rotation is a mirror: its determinant is -1, so that left and right, or up and down, change places.",
         "Look for an axis that one side counts the other way, e.g. y up instead of down, and change the sign of that "
         "row or column. The aligner has x to the right, y down, z forward, in both cameras."});
    return false;
  }
  return true;
}

void CheckTranslation(const CheckedPair& checked, Findings& findings) {
  constexpr double kLeast = 0.5, kMost = 200;
  const CameraPair& pair = checked.pair;
  const cv::Vec3d& t = pair.translation;
  const double baseline = cv::norm(t);
  const double sideways = std::hypot(t[0], t[1]);
  const auto parallax = [&](double length) { return pair.aux.fx * length / 300; };  // at 0.3 m, pixels
  if (baseline == 0 && cv::norm(pair.rotation - cv::Matx33d::eye()) < 1e-6) {
    findings.push_back(
        {Severity::kWarning, "no-extrinsics",
         Format(
             "The rotation is the identity and the translation zero: both cameras in one place, so that no depth moves "
             "a pixel. A baseline of 25 mm would move pixels at 0.3 m by %.1f.",
             parallax(25)),
         "If the pair has been calibrated, write what came out; these are a writer's default values."});
  } else if (baseline < kLeast) {
    findings.push_back(
        {Severity::kWarning, "baseline",
         Format("The cameras are %.4g depth codes apart. In metres? Depth codes are millimetres as a rule. As written, "
                "parallax at 0.3 m is %.2f pixels; with the translation times 1000 it would be %.1f.",
                baseline, parallax(sideways), parallax(sideways * 1000)),
         "Write the translation in the unit of the depth codes."});
  } else if (baseline > kMost) {
    findings.push_back(
        {Severity::kWarning, "baseline",
         Format(
             "The cameras are %.4g depth codes apart. No phone holds 200 mm between two cameras. As written, parallax "
             "at 0.3 m is %.1f pixels; with the translation divided by 10, %.1f; by 1000, %.1f.",
             baseline, parallax(sideways), parallax(sideways / 10), parallax(sideways / 1000)),
         "Write the translation in the unit of the depth codes, millimetres as a rule."});
  }
  if (std::abs(t[2]) > sideways) {
    const Approximation at = MeasureApproximation(pair, checked.tables, 300);
    findings.push_back(
        {Severity::kWarning, "axial-translation",
         Format(
             "The translation (%.4g, %.4g, %.4g) is mostly along the optical axis, and the alignment leaves that part "
             "out: at 0.3 m it is up to %.1f pixels off the exact projection.",
             t[0], t[1], t[2], at.error.maximum),
         "See that the three entries stand in the order x, y, z, x to the right, y down, z forward, seen by the aux "
         "camera."});
  }
}

void CheckDirection(const CheckedPair& checked, Findings& findings) {
  CheckOverlap(checked, findings);
  CheckAim(checked, findings);
}

}  // namespace itoftool
