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

/// E.g. "96, 98 and 99 %", the shares of ToF pixels that land at the compared depths.
std::string SharesText(const Flaws& flaws) {
  const auto percent = [&](size_t depth) { return 100 * flaws.shares[depth]; };
  return Format("%.0f, %.0f and %.0f %%", percent(0), percent(1), percent(2));
}

/// Reports that few pixels land, if another reading is clearly better or if it limits the alignment. Returns whether
/// another reading is better.
bool CheckOverlap(const CheckedPair& checked, Findings& findings) {
  constexpr double kLittle = 0.5, kHardlyAny = 0.25;
  const Flaws& flaws = checked.flaws;
  const Alternatives others = checked.ReadingsWithout(
      Flaw::kOverlap, [](const Explanation& other) { return SharesText(other.flaws) + " land"; });
  const bool hasReading = !others.readings.empty();
  if (!hasReading && std::ranges::min(flaws.shares) >= kLittle) return false;
  Severity severity = hasReading && !others.areWeak ? Severity::kWarning : Severity::kNote;
  if (flaws.MeanShare() < kHardlyAny) severity = Severity::kWarning;
  if (flaws.MeanShare() == 0) severity = Severity::kError;
  const std::string tried = " No other reading is clearly better; tried: " + TriedReadings(Flaw::kOverlap) + ".";
  findings.push_back({severity, "overlap", "",
                      "As written, " + SharesText(flaws) + " of the ToF pixels land at 0.3, 1 and 3 m." +
                          (hasReading ? others.text : tried),
                      "If the cameras really point apart, or the aux camera sees far less, the file is correct. "
                      "Otherwise compare with the stereo calibration: a point X in the ToF camera's coordinates is at "
                      "R X + T in the aux camera's.",
                      others.readings});
  return hasReading;
}

/// Checks that neither picture is turned about the optical axis. Returns whether one is.
bool CheckRoll(const CheckedPair& checked, Findings& findings) {
  const auto turned = [](const Explanation& other) { return Format("then %.1f degrees", other.flaws.roll); };
  if (!checked.flaws.Has(Flaw::kRoll)) return false;
  const Alternatives others = checked.ReadingsWithout(Flaw::kRoll, turned);
  const std::string tried = " No other reading is clearly better; tried: " + TriedReadings(Flaw::kRoll) + ".";
  findings.push_back(
      {Severity::kWarning, "roll", "",
       Format("The aux picture is turned by %.1f degrees about the optical axis against the ToF picture.",
              checked.flaws.roll) +
           (others.readings.empty() ? tried : others.text),
       "If the cameras are mounted like this, the file is correct. Otherwise check the rotation, and "
       "whether one of the pictures was turned before the calibration.",
       others.readings});
  return true;
}

/// Checks that the rotation brings the centres of both views together; camera pairs are built to see the same things.
void CheckAim(const CheckedPair& checked, Findings& findings) {
  const auto apart = [](const Explanation& other) { return Format("%.1f degrees apart", other.flaws.centresApart); };
  const Alternatives others = checked.ReadingsWithout(Flaw::kAim, apart);
  if (others.readings.empty()) return;
  const double pixelsPerDegree = checked.pair.aux.fx * std::numbers::pi / 180;
  findings.push_back(
      {Severity::kWarning, "aim", "",
       Format("The centres of the two views are %.1f degrees apart, about %.0f pixels in the aux view.",
              checked.flaws.centresApart, checked.flaws.centresApart * pixelsPerDegree) +
           others.text,
       "Check that the rotation takes the ToF camera's coordinates to the aux camera's, and is written row by row. To "
       "invert the pair, transpose the rotation R and replace the translation T by -R^T T.",
       others.readings});
}

bool HasNoExtrinsics(const CheckedPair& checked) {
  return checked.flaws.baseline == 0 && cv::norm(checked.pair.rotation - cv::Matx33d::eye()) < 1e-6;
}

void CheckBaseline(const CheckedPair& checked, Findings& findings) {
  const cv::Vec3d& t = checked.pair.translation;
  const double baseline = cv::norm(t);
  const auto parallax = [&](double length) { return checked.pair.aux.fx * length / 300; };  // at 0.3 m, pixels
  if (HasNoExtrinsics(checked)) {
    findings.push_back(
        {Severity::kWarning, "no-extrinsics", "",
         Format("The rotation is the identity and the translation is zero: both cameras are in one place, and depth "
                "moves no pixel. A baseline of 25 mm would move pixels at 0.3 m by %.1f.",
                parallax(25)),
         "These look like default values. If the pair has been calibrated, write the result."});
    return;
  }
  if (baseline == 0) {
    findings.push_back({Severity::kWarning, "baseline", "",
                        "The translation is zero: both cameras are in one place, and depth moves no pixel.",
                        "Write the translation of the stereo calibration."});
    return;
  }
  if (!checked.flaws.Has(Flaw::kBaseline)) return;
  const Alternatives others = checked.ReadingsWithout(
      Flaw::kBaseline, [](const Explanation& other) { return Format("%.4g mm apart", other.flaws.baseline); });
  findings.push_back(
      {Severity::kWarning, "baseline", "",
       Format("The cameras are %.4g depth codes apart. Depth codes are usually millimetres; two camera modules side by "
              "side are more than 5 mm apart, and no phone has 200 mm between them. As written, parallax at 0.3 m is "
              "%.2f pixels.",
              baseline, parallax(std::hypot(t[0], t[1]))) +
           others.text,
       "Write the translation in the unit of the depth codes, usually millimetres.", others.readings});
}

void CheckAxialTranslation(const CheckedPair& checked, Findings& findings) {
  const cv::Vec3d& t = checked.pair.translation;
  if (!checked.flaws.Has(Flaw::kAxialTranslation)) return;
  const Approximation approximation = MeasureApproximation(checked.pair, checked.tables, 300);
  findings.push_back(
      {Severity::kWarning, "axial-translation", "",
       Format(
           "The translation (%.4g, %.4g, %.4g) is mostly along the optical axis, and the alignment ignores that part: "
           "at 0.3 m it is up to %.1f pixels off the exact projection.",
           t[0], t[1], t[2], approximation.error.maximum),
       "Check that the three entries are in the order x, y, z. In the aux camera's coordinates x points right, y down "
       "and z forward."});
}

}  // namespace

void CheckRotation(const CheckedPair& checked, Findings& findings) {
  const cv::Matx33d& r = checked.pair.rotation;
  if (!checked.isRotation) {
    const cv::SVD svd((cv::Mat(r)));
    const cv::Mat nearest = svd.u * svd.vt;
    itof::CalibrationRecord other = checked.record;
    for (int i = 0; i < 9; ++i) other.rotation[i] = static_cast<float>(nearest.at<double>(i / 3, i % 3));
    findings.push_back({Severity::kError, "rotation", "",
                        Format("The rotation is not orthonormal: R times its transpose is up to %.3g off the identity. "
                               "The other reading is the nearest rotation. ",
                               OrthonormalityError(r)) +
                            checked.Effect(other),
                        "Write the rotation matrix of the stereo calibration, nine entries row by row. Convert a "
                        "rotation vector to a matrix first."});
  } else if (checked.flaws.Has(Flaw::kMirror)) {
    const Alternatives others = checked.ReadingsWithout(Flaw::kMirror);
    findings.push_back(
        {Severity::kError, "mirror", "",
         "The rotation is a mirror: its determinant is -1, which swaps left and right or up and down." + others.text,
         "Look for an axis with the wrong sign, for example y up instead of down, and negate that row "
         "or column. In both cameras x points right, y down and z forward.",
         others.readings});
  }
}

void CheckTranslation(const CheckedPair& checked, Findings& findings) {
  CheckBaseline(checked, findings);
  CheckAxialTranslation(checked, findings);
}

void CheckDirection(const CheckedPair& checked, Findings& findings) {
  if (checked.flaws.Has(Flaw::kMirror)) return;
  // One finding is enough for readings that remove several of these flaws.
  if (HasNoExtrinsics(checked) || CheckRoll(checked, findings) || checked.flaws.baseline > kLongestBaseline) {
    if (checked.flaws.MeanShare() == 0) {
      findings.push_back({Severity::kError, "overlap", "", "As written, no ToF pixel lands at 0.3, 1 or 3 m.",
                          "See the findings before this one."});
    }
    return;
  }
  if (CheckOverlap(checked, findings)) return;
  // If a camera's own parameters are wrong, its direction means nothing.
  for (const Flaw flaw : {Flaw::kTofLensRange, Flaw::kAuxLensRange, Flaw::kTofFieldOfView, Flaw::kAuxFieldOfView,
                          Flaw::kTofFocalLengths, Flaw::kAuxFocalLengths}) {
    if (checked.flaws.Has(flaw)) return;
  }
  CheckAim(checked, findings);
}

}  // namespace itoftool
