// Declares the parameters of the camera pair that the alignment works with.
#ifndef ITOF_CALIBRATION_ALIGNMENTPARAMS_H_
#define ITOF_CALIBRATION_ALIGNMENTPARAMS_H_

#include <cstdint>

#include "calibration/calibrationrecord.h"

namespace itof {

/// One camera pair. Sizes are in pixels; matrices are 3x3 row-major. Distortion coefficients are those of the rational
/// lens model in the order of OpenCV's calibration module: k1, k2, p1, p2, k3, k4, k5, k6. A point X in the ToF
/// camera's frame lies at rotation * X + translation in the aux camera's frame.
struct AlignmentParams {
  int32_t tofCalibWidth;  // image that tofIntrinsics refers to
  int32_t tofCalibHeight;
  int32_t auxCalibWidth;  // image that auxIntrinsics refers to
  int32_t auxCalibHeight;
  int32_t tofWidth;  // working depth frame
  int32_t tofHeight;
  int32_t auxWidth;  // output frame, in the aux camera's view
  int32_t auxHeight;
  double tofIntrinsics[9];
  double auxIntrinsics[9];
  double rotation[9];
  double translation[3];  // in units of ten depth codes
  double tofDistortion[8];
  double auxDistortion[8];
};

/// Fills `params` from a record, except for the four working sizes, which keep their values. The calibration sizes lose
/// their fraction, and the entries of the translation are divided by 10; all other values are exact.
void FillAlignmentParams(const CalibrationRecord& record, AlignmentParams& params);

/// The parameters of a record for ToF and aux frames of 640 x 360.
AlignmentParams WorkingParams(const CalibrationRecord& record);

}  // namespace itof

#endif  // ITOF_CALIBRATION_ALIGNMENTPARAMS_H_
