// Compares the units of a fleet: calibrations of camera pairs that were built alike.
#ifndef ITOF_TOOL_FLEET_FLEET_H_
#define ITOF_TOOL_FLEET_FLEET_H_

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "fleet/quantities.h"
#include "fleet/unit.h"

namespace itoftool {

/// Fewer units are not compared.
inline constexpr size_t kSmallestFleet = 5;

/// Files with the same calibration.
struct Copies {
  std::vector<std::string> paths;
  bool sameBytes;  // false: words that no pixel depends on differ
};

/// A quantity in which the units are compared, and its values in the fleet.
struct FleetQuantity {
  std::string name, unit;
  QuantityRole role;
  double median, medianAbsoluteDeviation;  // not-a-number if no unit has a value
};

/// A unit's value of a quantity.
struct Deviation {
  size_t quantity;  // index in Fleet::quantities
  double value;
  /// Distance from the fleet's median in robust standard deviations, 1.4826 times the median absolute deviation.
  /// Infinite if that is 0, the fleet's value is constant, and this one differs.
  double score;
};

/// A unit that deviates from the fleet.
struct DeviatingUnit {
  size_t unit;          // index in Fleet::compared
  double largestScore;  // of all its deviations
  bool isBeyond;        // beyond the threshold with that score
  /// Those beyond the threshold; of a unit within it, the largest of all and the largest cause. Causes first, each by
  /// score.
  std::vector<Deviation> deviations;
};

struct Fleet {
  std::vector<Copies> copies;
  /// Units with a record, by index in all units, and how far each one's positions are from the fleet's.
  std::vector<size_t> compared;
  std::vector<PerDepth<Spread>> moves;
  double threshold;  // of scores
  std::vector<FleetQuantity> quantities;
  std::vector<DeviatingUnit> deviating;  // all beyond the threshold, at least five if so many deviate; the worst first
};

/// Nothing if fewer than kSmallestFleet units have a record.
std::optional<Fleet> CompareFleet(std::span<const CheckedUnit> units);

}  // namespace itoftool

#endif  // ITOF_TOOL_FLEET_FLEET_H_
