// Defines the quantities in which the units of a fleet are compared.
#ifndef ITOF_TOOL_FLEET_QUANTITIES_H_
#define ITOF_TOOL_FLEET_QUANTITIES_H_

#include <span>
#include <string>
#include <vector>

#include "fleet/unit.h"

namespace itoftool {

enum class QuantityRole {
  kCause,        // units are compared in it, and a defect can be mended there
  kEffect,       // units are compared in it
  kInformation,  // units are not compared in it
};

struct QuantityValues {
  std::string name, unit;
  QuantityRole role;
  std::vector<double> values;  // of each unit; not-a-number if it has none
};

/// The median of the values, ignoring not-a-number; not-a-number if there are none.
double Median(std::vector<double> values);

/// For each unit and depth, how far its positions are from the fleet's: those at the medians of all units' x and y.
/// Pixels that land in fewer than three quarters of the units do not count: near the edge of the frame, only units that
/// are turned one way would make the medians.
std::vector<PerDepth<Spread>> MeasureMoves(std::span<const CheckedUnit* const> units);

/// The quantities of units with a record: every field that the geometry depends on, in the order of the file; the
/// rotation as three angles, with whether the matrix is a rotation at all; and the moves. The entries of the rotation
/// are not compared: those near 1 change with the square of an angle, so that their values are far from evenly spread in
/// a sound fleet.
std::vector<QuantityValues> MeasureQuantities(std::span<const CheckedUnit* const> units,
                                              std::span<const PerDepth<Spread>> moves);

}  // namespace itoftool

#endif  // ITOF_TOOL_FLEET_QUANTITIES_H_
