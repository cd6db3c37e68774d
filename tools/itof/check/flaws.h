// Measures, in exact geometry, how unlike a real camera pair a calibration is.
#ifndef ITOF_TOOL_CHECK_FLAWS_H_
#define ITOF_TOOL_CHECK_FLAWS_H_

#include <array>
#include <cstddef>
#include <iterator>

#include "calibration/calibrationrecord.h"
#include "check/readings.h"
#include "inspection/camerapair.h"
#include "inspection/comparison.h"

namespace itoftool {

enum class Flaw : size_t {
  kTofPrincipalPoint,  // far from the middle of the image
  kAuxPrincipalPoint,
  kTofFocalLengths,  // fx and fy differ in the frame
  kAuxFocalLengths,
  kTofFieldOfView,  // very small or very large
  kAuxFieldOfView,
  kTofLensRange,  // the lens model is used where it is not valid
  kAuxLensRange,
  kTofTangential,  // large tangential coefficients and hardly any k3
  kAuxTangential,
  kMirror,            // the determinant of the rotation is negative
  kAim,               // the middles of the views point apart
  kRoll,              // the pictures are turned against each other
  kOverlap,           // few ToF pixels land
  kBaseline,          // too short or too long for two cameras of a device
  kAxialTranslation,  // mostly along the optical axis
};
inline constexpr size_t kFlawCount = static_cast<size_t>(Flaw::kAxialTranslation) + 1;

/// Translations of a length outside this range are not those of two cameras in a device: camera modules are wider, and
/// devices are smaller. Millimetres.
inline constexpr double kShortestBaseline = 5, kLongestBaseline = 200;

/// The flaws of a calibration, and the measurements they come from.
struct Flaws {
  /// How large each flaw is, as a multiple of what sound pairs have at most.
  std::array<double, kFlawCount> sizes{};

  double centresApart;        // angle between the middles of the two views, degrees
  double baseline;            // length of the translation, depth codes
  double roll;                // of the aux picture against the ToF picture about the optical axis, degrees
  double tofRadius;           // the largest radius in use on the plane z = 1; not-a-number if a corner has no ray
  double auxRadius;           // the same for the aux camera
  double tofReach, auxReach;  // up to which radius the lens models are valid
  /// Shares (0..1) of ToF pixels that the aux camera sees in its frame, one for each of kCompareDepths.
  std::array<double, std::size(kCompareDepths)> shares;

  double Size(Flaw flaw) const { return sizes[static_cast<size_t>(flaw)]; }
  bool Has(Flaw flaw) const { return Size(flaw) > 1; }
  double MeanShare() const;
};

/// Measures a calibration that itof_init accepts.
Flaws MeasureFlaws(const itof::CalibrationRecord& record, const CameraPair& pair);

/// Whether a flaw depends on the fields that a reading changes.
bool DependsOn(Flaw flaw, ReadingPart part);

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_FLAWS_H_
