// The fields of one camera in a calibration record, so that both cameras are judged by the same code.
#ifndef ITOF_TOOL_CHECK_CAMERAFIELDS_H_
#define ITOF_TOOL_CHECK_CAMERAFIELDS_H_

#include <cmath>

#include "calibration/calibrationrecord.h"

namespace itoftool {

/// Refers into a record that may be changed.
struct CameraFields {
  const char* name;
  float& width;
  float& height;
  float (&matrix)[9];
  float (&lens)[8];  // k1, k2, p1, p2, k3, k4, k5, k6

  double Width() const { return std::trunc(static_cast<double>(width)); }
  double Height() const { return std::trunc(static_cast<double>(height)); }
  double Entry(int i) const { return static_cast<double>(matrix[i]); }
  double Coefficient(int i) const { return static_cast<double>(lens[i]); }
};

inline CameraFields TofFields(itof::CalibrationRecord& r) {
  return {"ToF", r.tofCalibWidth, r.tofCalibHeight, r.tofIntrinsics, r.tofDistortion};
}
inline CameraFields AuxFields(itof::CalibrationRecord& r) {
  return {"aux", r.auxCalibWidth, r.auxCalibHeight, r.auxIntrinsics, r.auxDistortion};
}

using PickCamera = CameraFields (*)(itof::CalibrationRecord&);

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_CAMERAFIELDS_H_
