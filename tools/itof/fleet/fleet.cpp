// Finds the units of a fleet that deviate from the rest. Medians describe the fleet, because they hardly change if some
// units are defective; means and standard deviations would follow the defects and hide them.
#include "fleet/fleet.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <iterator>
#include <limits>
#include <map>

#include "calibration/calibrationfields.h"

namespace itoftool {
namespace {

/// The bytes of a calibration without the words that no pixel depends on.
std::string GeometryBytes(itof::CalibrationRecord record) {
  itof::ForEachEntry([&](const itof::CalibrationField& field, size_t index) {
    if (!itof::IsGeometry(field.kind)) itof::SetEntry(record, field, index, 0);
  });
  std::string bytes(sizeof record, '\0');
  std::memcpy(bytes.data(), &record, sizeof record);
  return bytes;
}

std::vector<Copies> FindCopies(std::span<const CheckedUnit> units) {
  std::map<std::string, std::vector<const CheckedUnit*>> groups;
  for (const CheckedUnit& unit : units) {
    if (!unit.content.empty()) groups[unit.record ? GeometryBytes(*unit.record) : unit.content].push_back(&unit);
  }
  std::vector<Copies> copies;
  for (const auto& [bytes, group] : groups) {
    if (group.size() < 2) continue;
    Copies same{{}, true};
    for (const CheckedUnit* unit : group) {
      same.paths.push_back(unit->path);
      same.sameBytes = same.sameBytes && unit->content == group.front()->content;
    }
    copies.push_back(std::move(same));
  }
  std::ranges::sort(copies, {}, [](const Copies& same) { return same.paths.front(); });
  return copies;
}

FleetQuantity Summarise(const QuantityValues& quantity) {
  const double median = Median(quantity.values);
  std::vector<double> deviations;
  for (const double value : quantity.values) deviations.push_back(std::abs(value - median));
  return {quantity.name, quantity.unit, quantity.role, median, Median(deviations)};
}

double Score(const FleetQuantity& quantity, double value) {
  const double distance = std::abs(value - quantity.median);
  if (!(distance > 0)) return 0;                                       // equal, or not-a-number
  const double deviation = 1.4826 * quantity.medianAbsoluteDeviation;  // a normal distribution's standard deviation
  return deviation > 0 ? distance / deviation : std::numeric_limits<double>::infinity();
}

/// The score that is rarely exceeded in a sound fleet of that many units, at least kSmallestFleet.
double FleetThreshold(size_t units) {
  // Rounded up from simulated series of normally distributed values: in one of 5000 such series of that length, some
  // value exceeds it. With some 60 quantities, that is one sound fleet in a hundred. In short series the median absolute
  // deviation is so uncertain that only gross deviations can be told from chance.
  struct Row {
    size_t units;
    double threshold;
  };
  constexpr Row kRows[] = {{100, 6}, {50, 6.5}, {30, 7.5}, {20, 9.5}, {15, 12}, {12, 15}, {10, 19}, {8, 27}, {6, 45}};
  for (const auto& [least, threshold] : kRows) {
    if (units >= least) return threshold;
  }
  return 140;
}

DeviatingUnit FindDeviations(size_t unit, const Fleet& fleet, const std::vector<QuantityValues>& quantities) {
  std::vector<Deviation> all;
  for (size_t i = 0; i < quantities.size(); ++i) {
    if (quantities[i].role == QuantityRole::kInformation) continue;
    const double value = quantities[i].values[unit];
    all.push_back({i, value, Score(fleet.quantities[i], value)});
  }
  // Stable, so that fields that are constant in the fleet, sizes of images first, are in the order of the file.
  std::ranges::stable_sort(all, std::greater(), &Deviation::score);
  const auto isCause = [&](const Deviation& d) { return quantities[d.quantity].role == QuantityRole::kCause; };
  const auto largestCause = std::ranges::find_if(all, isCause);
  DeviatingUnit found{unit, all.front().score, all.front().score > fleet.threshold, {}};
  for (auto each = all.begin(); each != all.end(); ++each) {
    const bool isLargest = each == all.begin() || (each == largestCause && each->score > 0);
    if (found.isBeyond ? each->score > fleet.threshold : isLargest) found.deviations.push_back(*each);
  }
  std::stable_partition(found.deviations.begin(), found.deviations.end(), isCause);
  return found;
}

}  // namespace

std::optional<Fleet> CompareFleet(std::span<const CheckedUnit> units) {
  constexpr size_t kAlwaysListed = 5;
  Fleet fleet{};
  std::vector<const CheckedUnit*> compared;
  for (size_t i = 0; i < units.size(); ++i) {
    if (!units[i].record) continue;
    fleet.compared.push_back(i);
    compared.push_back(&units[i]);
  }
  if (compared.size() < kSmallestFleet) return std::nullopt;

  fleet.copies = FindCopies(units);
  fleet.threshold = FleetThreshold(compared.size());
  fleet.moves = MeasureMoves(compared);
  const std::vector<QuantityValues> quantities = MeasureQuantities(compared, fleet.moves);
  std::ranges::transform(quantities, std::back_inserter(fleet.quantities), Summarise);

  for (size_t i = 0; i < compared.size(); ++i) fleet.deviating.push_back(FindDeviations(i, fleet, quantities));
  std::ranges::stable_sort(fleet.deviating, std::greater(), &DeviatingUnit::largestScore);
  const auto end = std::ranges::find_if(fleet.deviating, [&](const DeviatingUnit& unit) {
    const auto rank = static_cast<size_t>(&unit - fleet.deviating.data());
    return unit.largestScore == 0 || (!unit.isBeyond && rank >= kAlwaysListed);
  });
  fleet.deviating.erase(end, fleet.deviating.end());
  return fleet;
}

}  // namespace itoftool
