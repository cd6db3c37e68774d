// Two cameras side by side: as their calibration file describes them, and as rays are traced through them.
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
  itof::CalibrationRecord record;  // what the calibration file holds
  Camera tof;                      // what the record says, at 640 x 360
  Camera aux;
  Mat3 rotation;
  Vec3 translation;
};

/// A pair as a careful maker would build it: 25 mm apart, 0.7 degrees off parallel, no offset along the axis, about the
/// same field of view, lenses that move the corners by some pixels.
Rig GentleRig();

/// A pair far from what an approximate alignment is made for: 7 degrees off parallel, offset along the axis, wide
/// lenses that move the corners by tens of pixels.
Rig StrongRig();

}  // namespace itoftool::simulation

#endif  // ITOF_TOOL_SIMULATION_RIG_H_
