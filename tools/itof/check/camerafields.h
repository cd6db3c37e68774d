// Reads the fields of one camera from a calibration record, and writes them back, so that the same code checks both
// cameras.
#ifndef ITOF_TOOL_CHECK_CAMERAFIELDS_H_
#define ITOF_TOOL_CHECK_CAMERAFIELDS_H_

#include <algorithm>
#include <cmath>

#include "calibration/calibrationrecord.h"
#include "framesize.h"

namespace itoftool {

inline constexpr double kFrameAspect = static_cast<double>(itof::kFrameWidth) / itof::kFrameHeight;

enum class WhichCamera { kTof, kAux };

struct CameraFields {
  WhichCamera which;
  double width, height;  // of the calibration image in whole pixels, the record's fractions truncated
  double matrix[9];
  double lens[8];  // k1, k2, p1, p2, k3, k4, k5, k6

  const char* Name() const { return which == WhichCamera::kTof ? "ToF" : "aux"; }
  double Fx() const { return matrix[0]; }
  double Fy() const { return matrix[4]; }
  double Cx() const { return matrix[2]; }
  double Cy() const { return matrix[5]; }

  /// Whether the matrix is in fractions of the image size instead of pixels.
  bool IsInFractions() const {
    const bool areFractions = std::min(Cx(), Cy()) >= 0 && std::max(Cx(), Cy()) <= 1 && std::max(Fx(), Fy()) < 10;
    return areFractions && std::min(width, height) > 10;
  }
  /// How far the principal point is right of and below the middle of the image, in pixels.
  double RightOffset() const { return Cx() - (width - 1) / 2; }
  double DownOffset() const { return Cy() - (height - 1) / 2; }
  /// Whether the calibration image has the shape of the frame.
  bool IsFrameShape() const { return std::abs(width / height / kFrameAspect - 1) <= 0.01; }
  /// Ratio of the focal lengths fx and fy in the frame.
  double FrameFocalRatio() const { return Fx() / Fy() * height * kFrameAspect / width; }
  /// How far that ratio is from 1, the ratio of square pixels. For an image of another shape with square pixels, it is
  /// how far the ratio in the image is from 1: such an image may really be squashed.
  double FocalLengthsError() const {
    const double inFrame = std::abs(FrameFocalRatio() - 1);
    return IsFrameShape() ? inFrame : std::min(inFrame, std::abs(Fx() / Fy() - 1));
  }
};

inline CameraFields ReadCamera(const itof::CalibrationRecord& record, WhichCamera which) {
  const bool isTof = which == WhichCamera::kTof;
  CameraFields camera{};
  camera.which = which;
  camera.width = std::trunc(static_cast<double>(isTof ? record.tofCalibWidth : record.auxCalibWidth));
  camera.height = std::trunc(static_cast<double>(isTof ? record.tofCalibHeight : record.auxCalibHeight));
  std::ranges::copy(isTof ? record.tofIntrinsics : record.auxIntrinsics, camera.matrix);
  std::ranges::copy(isTof ? record.tofDistortion : record.auxDistortion, camera.lens);
  return camera;
}

/// The record with the matrix and the lens of `camera`.
inline itof::CalibrationRecord WithCamera(itof::CalibrationRecord record, const CameraFields& camera) {
  const bool isTof = camera.which == WhichCamera::kTof;
  const auto toFloat = [](double value) { return static_cast<float>(value); };
  std::ranges::transform(camera.matrix, isTof ? record.tofIntrinsics : record.auxIntrinsics, toFloat);
  std::ranges::transform(camera.lens, isTof ? record.tofDistortion : record.auxDistortion, toFloat);
  return record;
}

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_CAMERAFIELDS_H_
