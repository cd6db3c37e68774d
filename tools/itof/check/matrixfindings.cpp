// Camera matrices: in pixels, of the image whose size stands beside them, and of the part of it that is the frame.
#include <algorithm>
#include <cmath>

#include "camera/imagepart.h"
#include "check/camerafields.h"
#include "check/checkedpair.h"
#include "framesize.h"
#include "support/text.h"

namespace itoftool {
namespace {

constexpr double kFrameAspect = static_cast<double>(itof::kFrameWidth) / itof::kFrameHeight;

/// True if the matrix is in shares of the image's sides.
bool FindNormalised(const CheckedPair& checked, PickCamera pick, Findings& findings) {
  itof::CalibrationRecord inPixels = checked.record;
  const CameraFields camera = pick(inPixels);
  const double fx = camera.Entry(0), cx = camera.Entry(2), fy = camera.Entry(4), cy = camera.Entry(5);
  const double width = camera.Width(), height = camera.Height();
  const bool shares = std::min(cx, cy) >= 0 && std::max(cx, cy) <= 1 && std::max(fx, fy) < 10;
  if (!shares || std::min(width, height) <= 10) return false;
  for (int i = 0; i < 6; ++i) camera.matrix[i] *= static_cast<float>(i < 3 ? width : height);
  for (const int i : {2, 5}) camera.matrix[i] -= 0.5F;  // from the image's edge to the centre of its first pixel
  findings.push_back(
      {Severity::kWarning, "normalised",
       Format(
           "The %s matrix holds fx %.3f, fy %.3f, cx %.3f, cy %.3f: shares of the image's sides, not pixels. As read, "
           "the picture is %.1f x %.1f focal lengths large; in pixels it would be fx %.1f, fy %.1f, cx %.1f, cy %.1f. ",
           camera.name, fx, fy, cx, cy, width / fx, height / fy, camera.Entry(0), camera.Entry(4), camera.Entry(2),
           camera.Entry(5)) +
           checked.Effect(inPixels),
       Format("Multiply fx and cx by %.0f, fy and cy by %.0f, and take half a pixel off cx and cy if their 0 is the "
              "image's edge.",
              width, height)});
  return true;
}

/// A matrix that is not [fx 0 cx; 0 fy cy; 0 0 1]. The far plane takes the whole matrix, the lens table its four numbers.
void CheckForm(const CheckedPair& checked, PickCamera pick, Findings& findings) {
  constexpr double kSkew = 1e-3;  // share of a focal length
  itof::CalibrationRecord other = checked.record;
  const CameraFields camera = pick(other);
  auto& m = camera.matrix;
  const bool skewed = std::max(std::abs(camera.Entry(1)), std::abs(camera.Entry(3))) > kSkew * camera.Entry(0);
  if (!skewed && m[6] == 0 && m[7] == 0 && m[8] == 1) return;
  std::string text = Format(
      "The %s matrix is [%.6g, %.6g, %.6g; %.6g, %.6g, %.6g; %.6g, %.6g, %.6g], and not of the form "
      "[fx, 0, cx; 0, fy, cy; 0, 0, 1]; the other reading is ",
      camera.name, camera.Entry(0), camera.Entry(1), camera.Entry(2), camera.Entry(3), camera.Entry(4), camera.Entry(5),
      camera.Entry(6), camera.Entry(7), camera.Entry(8));
  const bool transposed = m[2] == 0 && m[5] == 0 && m[6] > 0 && m[7] > 0;
  if (transposed) {
    m[2] = m[6];
    m[5] = m[7];
  }
  for (const int i : {1, 3, 6, 7}) m[i] = 0;
  m[8] = 1;
  text += (transposed ? "its transpose. " : "with those zeros and that one. ") + checked.Effect(other);
  findings.push_back(
      {Severity::kWarning, "matrix-form", text,
       "Write the nine entries row by row. The alignment knows no skew: the far plane would have it, the "
       "lens table would not."});
}

/// Focal lengths against each other, and the image's sides against the frame's.
void CheckShape(const CheckedPair& checked, PickCamera pick, Findings& findings) {
  constexpr double kTolerance = 0.02;
  itof::CalibrationRecord other = checked.record;
  const CameraFields camera = pick(other);
  const double fx = camera.Entry(0), fy = camera.Entry(4), width = camera.Width(), height = camera.Height();
  const double ratio = fx / fy;                                       // in the calibration's image
  const double workingRatio = ratio * height * kFrameAspect / width;  // in the frame
  if (std::abs(workingRatio - 1) <= kTolerance) return;

  const bool isFrameShape = std::abs(width / height / kFrameAspect - 1) <= 0.01;
  if (!isFrameShape && std::abs(ratio - 1) <= kTolerance) {
    const double cropWidth = std::min(width, height * kFrameAspect),
                 cropHeight = std::min(height, width / kFrameAspect);
    const ImagePart crop{(width - cropWidth) / 2, (height - cropHeight) / 2, cropWidth, cropHeight};
    TakePart(camera.matrix, crop, width, height);
    findings.push_back(
        {Severity::kWarning, "aspect",
         Format(
             "The %s matrix is of a %.0f x %.0f image with square pixels, which is not 16:9. The alignment squashes "
             "that whole image into 640 x 360, each axis by itself. If the frame really is the image's middle, %.0f x "
             "%.0f pixels from (%.0f, %.0f) on, every pixel is read wrong. ",
             camera.name, width, height, crop.width, crop.height, crop.left, crop.top) +
             checked.Effect(other),
         "If the sensor delivers the whole image squashed, all is well. If it delivers a crop, write the matrix and "
         "the size of the crop; \"itof calibration import --tof-window\" does that for the ToF camera."});
    return;
  }
  camera.matrix[4] = static_cast<float>(fy * workingRatio);
  findings.push_back(
      {Severity::kWarning, "focal-lengths",
       Format(
           "The %s focal lengths are %.1f and %.1f pixels in a 640 x 360 frame, %.1f %% apart; lenses and sensors have "
           "both alike to 2 %%. The other reading is fy as fx is. ",
           camera.name, fx * itof::kFrameWidth / width, fy * itof::kFrameHeight / height,
           100 * std::abs(workingRatio - 1)) +
           checked.Effect(other),
       "Look for a matrix and an image size that do not belong together, or for a sensor mode whose rows are binned."});
}

void CheckPrincipalPoint(const CheckedPair& checked, PickCamera pick, Findings& findings) {
  constexpr double kFar = 0.08;  // share of the image's side
  itof::CalibrationRecord other = checked.record;
  const CameraFields camera = pick(other);
  const double cx = camera.Entry(2), cy = camera.Entry(5), width = camera.Width(), height = camera.Height();
  const double right = cx - (width - 1) / 2, down = cy - (height - 1) / 2;
  if (std::abs(right) <= kFar * width && std::abs(down) <= kFar * height) return;

  const auto side = [](double offset, const char* more, const char* less) {
    return Format("%.1f pixels %s", std::abs(offset), offset > 0 ? more : less);
  };
  std::string text =
      Format("The %s principal point (%.1f, %.1f) lies %s and %s the middle of the %.0f x %.0f image.", camera.name, cx,
             cy, side(right, "right of", "left of").c_str(), side(down, "below", "above").c_str(), width, height);
  const ImagePart image{0, 0, 2 * cx + 1, 2 * cy + 1};  // with the principal point in its middle
  if (std::min(image.width, image.height) >= 1) {
    const bool alike = std::abs(image.width / width / (image.height / height) - 1) < 0.05;
    TakePart(camera.matrix, image, width, height);
    text += Format(
                " Either the image is a crop whose middle is not the lens' axis, and all is well; or the matrix is of "
                "another image, whose middle this would be: one of about %.0f x %.0f pixels, which has %s shape. ",
                image.width, image.height, alike ? "the same" : "another") +
            checked.Effect(other);
  }
  findings.push_back({Severity::kWarning, "principal-point", text,
                      "For a crop, make sure that cx and cy count from the crop's own corner. Else write the size of "
                      "the image that the matrix was made with, or scale the matrix."});
}

}  // namespace

bool CheckMatrices(const CheckedPair& checked, Findings& findings) {
  bool inPixels = true;
  for (const PickCamera pick : {TofFields, AuxFields}) {
    if (FindNormalised(checked, pick, findings)) {
      inPixels = false;
      continue;
    }
    CheckForm(checked, pick, findings);
    CheckShape(checked, pick, findings);
    CheckPrincipalPoint(checked, pick, findings);
  }
  return inPixels;
}

}  // namespace itoftool
