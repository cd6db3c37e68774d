// Defines the simulated camera pairs: their calibration records, and the cameras to trace rays through.
#ifndef ITOF_TOOL_SIMULATION_RIG_H_
#define ITOF_TOOL_SIMULATION_RIG_H_

#include "calibration/calibrationrecord.h"
#include "camera/lens.h"

namespace itoftool::simulation {

/// Frame size of both cameras, pixels.
inline constexpr int kWidth = 640;
inline constexpr int kHeight = 360;

/// A camera pair. Lengths in millimetres. A point X of the ToF camera's frame lies at rotation * X + translation in the
/// aux camera's frame.
struct Rig {
  itof::CalibrationRecord record;
  Camera tof;  // as in the record, scaled to 640 x 360
  Camera aux;
  Mat3 rotation;
  Vec3 translation;
};

/// A carefully built pair: 25 mm apart, 0.7 degrees off parallel, no offset along the axis, about the same field of
/// view, and lenses that move the corners by a few pixels.
Rig GentleRig();

/// A pair that an approximate alignment is not made for: 7 degrees off parallel, offset along the axis, with wide
/// lenses that move the corners by tens of pixels.
Rig StrongRig();

}  // namespace itoftool::simulation

#endif  // ITOF_TOOL_SIMULATION_RIG_H_
