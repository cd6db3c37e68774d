// Converts the single-precision fields of a calibration record to the double-precision parameters of the alignment.
#include "calibration/alignmentparams.h"

#include <algorithm>

#include "framesize.h"
#include "integerpart.h"

namespace itof {

void FillAlignmentParams(const CalibrationRecord& record, AlignmentParams& params) {
  const auto widen = [](float value) { return static_cast<double>(value); };
  // A product with 0.1 could differ in the last bit.
  const auto widenAndDivide = [](float value) { return static_cast<double>(value) / 10.0; };

  params.tofCalibWidth = IntegerPart(widen(record.tofCalibWidth));
  params.tofCalibHeight = IntegerPart(widen(record.tofCalibHeight));
  params.auxCalibWidth = IntegerPart(widen(record.auxCalibWidth));
  params.auxCalibHeight = IntegerPart(widen(record.auxCalibHeight));
  std::ranges::transform(record.tofIntrinsics, params.tofIntrinsics, widen);
  std::ranges::transform(record.auxIntrinsics, params.auxIntrinsics, widen);
  std::ranges::transform(record.rotation, params.rotation, widen);
  std::ranges::transform(record.translation, params.translation, widenAndDivide);
  std::ranges::transform(record.tofDistortion, params.tofDistortion, widen);
  std::ranges::transform(record.auxDistortion, params.auxDistortion, widen);
}

AlignmentParams WorkingParams(const CalibrationRecord& record) {
  AlignmentParams params{};
  params.tofWidth = params.auxWidth = kFrameWidth;
  params.tofHeight = params.auxHeight = kFrameHeight;
  FillAlignmentParams(record, params);
  return params;
}

}  // namespace itof
