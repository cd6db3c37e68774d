// Checks the camera matrices: in pixels, of the image whose size the record gives, and of the part of it that becomes
// the frame.
#include <algorithm>
#include <cmath>

#include "camera/imagepart.h"
#include "check/camerafields.h"
#include "check/checkedpair.h"
#include "framesize.h"
#include "inspection/valuetext.h"
#include "support/text.h"

namespace itoftool {
namespace {

/// Reports a matrix in fractions of the image size.
void ReportFractions(const CheckedPair& checked, const CameraFields& written, Findings& findings) {
  const double fx = written.Fx(), fy = written.Fy(), cx = written.Cx(), cy = written.Cy();
  const double width = written.width, height = written.height;
  CameraFields scaled = written;
  for (int i = 0; i < 6; ++i) scaled.matrix[i] *= i < 3 ? width : height;
  for (const int i : {2, 5}) scaled.matrix[i] -= 0.5;  // from the image's edge to the centre of its first pixel
  const itof::CalibrationRecord other = WithCamera(checked.record, scaled);
  const CameraFields inPixels = ReadCamera(other, written.which);  // as single precision holds it
  const std::string effect =
      checked.flaws.MeanShare() > 0 ? checked.Effect(other) : "As written, no ToF pixel lands in the aux view.";
  findings.push_back(
      {checked.flaws.MeanShare() > 0 ? Severity::kWarning : Severity::kError, "normalised", written.Name(),
       Format("The %s matrix has fx %.3f, fy %.3f, cx %.3f, cy %.3f. These are fractions of the image size, not "
              "pixels: as written, the image measures %.1f x %.1f focal lengths. The other reading is fx %.1f, fy "
              "%.1f, cx %.1f, cy %.1f. ",
              written.Name(), fx, fy, cx, cy, width / fx, height / fy, inPixels.Fx(), inPixels.Fy(), inPixels.Cx(),
              inPixels.Cy()) +
           effect,
       Format("Multiply fx and cx by %.0f, and fy and cy by %.0f. Subtract half a pixel from cx and cy if they count "
              "from the image's edge.",
              width, height)});
}

/// Checks that the matrix is [fx 0 cx; 0 fy cy; 0 0 1]. The far-plane step uses the whole matrix, the lens table only
/// these four numbers.
void CheckForm(const CheckedPair& checked, const CameraFields& written, Findings& findings) {
  constexpr double kSkew = 1e-4;  // share of a focal length; beyond it, skew moves pixels by 0.05 or more
  const auto& m = written.matrix;
  const bool isSkewed = std::max(std::abs(m[1]), std::abs(m[3])) > kSkew * written.Fx();
  if (!isSkewed && m[6] == 0 && m[7] == 0 && m[8] == 1) return;

  const bool isTransposed = m[2] == 0 && m[5] == 0 && m[6] > 0 && m[7] > 0;
  CameraFields other = written;
  if (isTransposed) {
    other.matrix[2] = m[6];
    other.matrix[5] = m[7];
  }
  for (const int i : {1, 3, 6, 7}) other.matrix[i] = 0;
  other.matrix[8] = 1;
  findings.push_back(
      {Severity::kWarning, "matrix-form", written.Name(),
       Format("The %s matrix is %s, not of the form [fx, 0, cx; 0, fy, cy; 0, 0, 1]. The other reading %s. ",
              written.Name(), MatrixText(cv::Matx33d(m)).c_str(),
              isTransposed ? "is its transpose" : "sets those entries to 0 and the last to 1") +
           checked.Effect(WithCamera(checked.record, other)),
       "Write the nine entries row by row. The alignment does not support skew: the far-plane step would apply it, the "
       "lens table would not."});
}

/// Checks that the focal lengths are equal in the frame. If they are not, either they are wrong, or the calibration
/// image is not 16:9.
void CheckShape(const CheckedPair& checked, const CameraFields& written, Flaw focalLengths, Findings& findings) {
  constexpr double kTolerance = 0.02;
  const double fx = written.Fx(), fy = written.Fy(), width = written.width, height = written.height;
  const double frameRatio = written.FrameFocalRatio();
  if (std::abs(frameRatio - 1) <= kTolerance) return;

  CameraFields other = written;
  if (!written.IsFrameShape() && std::abs(fx / fy - 1) <= kTolerance) {
    const double cropWidth = std::min(width, height * kFrameAspect),
                 cropHeight = std::min(height, width / kFrameAspect);
    const ImagePart crop{(width - cropWidth) / 2, (height - cropHeight) / 2, cropWidth, cropHeight};
    TakePart(other.matrix, crop, width, height);
    findings.push_back(
        {Severity::kNote, "aspect", written.Name(),
         Format(
             "The %s matrix is for a %.0f x %.0f image with square pixels, which is not 16:9. The alignment squashes "
             "the whole image into 640 x 360. In the other reading the frame is only the middle of the image, %.0f x "
             "%.0f pixels from (%.0f, %.0f) on. ",
             written.Name(), width, height, crop.width, crop.height, crop.left, crop.top) +
             checked.Effect(WithCamera(checked.record, other)),
         "If the sensor delivers the whole image squashed, the file is correct. If it delivers a crop, write the "
         "matrix and the size of the crop; \"itof calibration import --tof-window\" does that for the ToF camera."});
    return;
  }
  const Alternatives others = checked.ReadingsWithout(focalLengths);
  std::string effect = others.text;
  if (others.readings.empty()) {
    other.matrix[4] = fy * frameRatio;
    effect = " In the other reading fy equals fx. " + checked.Effect(WithCamera(checked.record, other));
  }
  findings.push_back(
      {Severity::kWarning, "focal-lengths", written.Name(),
       Format("The %s focal lengths are %.1f and %.1f pixels in a 640 x 360 frame. They differ by %.1f %%; those of "
              "real cameras differ by less than 2 %%.",
              written.Name(), fx * itof::kFrameWidth / width, fy * itof::kFrameHeight / height,
              100 * std::abs(frameRatio - 1)) +
           effect,
       "Check whether the matrix belongs to the image size, and whether the sensor mode bins rows.", others.readings});
}

void CheckPrincipalPoint(const CheckedPair& checked, const CameraFields& written, Flaw flaw, Findings& findings) {
  if (!checked.flaws.Has(flaw)) return;
  const double cx = written.Cx(), cy = written.Cy(), width = written.width, height = written.height;
  const auto side = [](double offset, const char* ifPositive, const char* ifNegative) {
    return Format("%.1f pixels %s", std::abs(offset), offset > 0 ? ifPositive : ifNegative);
  };
  std::string text = Format(
      "The %s principal point (%.1f, %.1f) lies %s and %s the middle of the %.0f x %.0f image. This is correct "
      "for a crop whose middle is off the lens's axis.",
      written.Name(), cx, cy, side(written.RightOffset(), "right of", "left of").c_str(),
      side(written.DownOffset(), "below", "above").c_str(), width, height);
  const Alternatives others = checked.ReadingsWithout(flaw, [&](const Explanation& explanation) {
    const CameraFields other = ReadCamera(explanation.record, written.which);
    const double factor = written.Fx() / other.Fx();
    const bool isScaled = std::abs((other.Cx() + 0.5) * factor - (cx + 0.5)) < 0.1;
    return isScaled && factor != 1 ? Format("%.0f x %.0f pixels", width * factor, height * factor)
                                   : Format("then at (%.1f, %.1f)", other.Cx(), other.Cy());
  });
  text += others.text;
  findings.push_back({Severity::kWarning, "principal-point", written.Name(), text,
                      "For a crop, check that cx and cy count from the crop's own corner. Otherwise write the size of "
                      "the image that the matrix was made for, or scale the matrix.",
                      others.readings});
}

}  // namespace

void CheckMatrices(const CheckedPair& checked, Findings& findings) {
  for (const WhichCamera which : {WhichCamera::kTof, WhichCamera::kAux}) {
    const CameraFields written = ReadCamera(checked.record, which);
    const bool isTof = which == WhichCamera::kTof;
    if (written.IsInFractions()) {
      ReportFractions(checked, written, findings);
      continue;
    }
    CheckForm(checked, written, findings);
    CheckShape(checked, written, isTof ? Flaw::kTofFocalLengths : Flaw::kAuxFocalLengths, findings);
    CheckPrincipalPoint(checked, written, isTof ? Flaw::kTofPrincipalPoint : Flaw::kAuxPrincipalPoint, findings);
  }
}

}  // namespace itoftool
