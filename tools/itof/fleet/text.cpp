// Writes what a fleet's comparison found, as text for a terminal.
#include "fleet/text.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "support/text.h"

namespace itoftool {
namespace {

std::string CopiesText(const std::vector<Copies>& copies) {
  std::string text;
  for (const Copies& same : copies) {
    text += same.sameBytes ? "\nIdentical files\n"
                           : "\nIdentical calibrations; only words that no pixel depends on differ\n";
    for (const std::string& path : same.paths) text += "  " + OneLine(path) + "\n";
  }
  return text;
}

std::string MovesText(const PerDepth<Spread>& moves) {
  std::string text;
  for (size_t i = 0; i < std::size(kCompareDepths); ++i) {
    text += Format("%s%.1f m: ", i == 0 ? "" : ", ", kCompareDepths[i] / 1000.0);
    text += moves[i].count == 0 ? "none" : Format("%.1f / %.1f", moves[i].median, moves[i].maximum);
  }
  return text;
}

std::string DeviationText(const Deviation& deviation, const FleetQuantity& quantity) {
  const std::string score = std::isinf(deviation.score) ? "constant" : Format("%.1f", deviation.score);
  return Format("  %-20s  %12.6g  %12.6g  %12.3g  %9s  %s\n", quantity.name.c_str(), deviation.value, quantity.median,
                quantity.medianAbsoluteDeviation, score.c_str(), quantity.unit.c_str());
}

std::string UnitText(const DeviatingUnit& unit, const Fleet& fleet, const std::string& path, bool verbose) {
  constexpr size_t kMostShown = 6;
  std::string text = Format("%s  (pixels moved, median / maximum: %s)\n", OneLine(path).c_str(),
                            MovesText(fleet.moves[unit.unit]).c_str());
  const size_t count = unit.deviations.size();
  const size_t shown = count > kMostShown && !verbose ? kMostShown - 1 : count;
  for (const Deviation& deviation : std::span(unit.deviations).first(shown)) {
    text += DeviationText(deviation, fleet.quantities[deviation.quantity]);
  }
  if (shown < count) text += Format("  and %zu more\n", count - shown);
  return text;
}

std::string QuantitiesText(const Fleet& fleet) {
  std::string text = "\nThe fleet's median and median absolute deviation (MAD)\n";
  for (const FleetQuantity& quantity : fleet.quantities) {
    if (std::isnan(quantity.median)) continue;  // a move, and no pixel lands
    text += Format("  %-20s  %12.6g  %12.3g  %s\n", quantity.name.c_str(), quantity.median,
                   quantity.medianAbsoluteDeviation, quantity.unit.c_str());
  }
  return text;
}

/// The units from `first` to `last` in the order of the list.
std::string UnitsText(const Fleet& fleet, std::span<const CheckedUnit> units, size_t first, size_t last, bool verbose) {
  constexpr size_t kMostShown = 20;
  const size_t end = verbose ? last : std::min(last, first + kMostShown);
  std::string text = "  quantity                     value        median           MAD  deviation  unit\n";
  for (size_t i = first; i < end; ++i) {
    const DeviatingUnit& unit = fleet.deviating[i];
    text += UnitText(unit, fleet, units[fleet.compared[unit.unit]].path, verbose);
  }
  if (end < last) text += Format("and %zu more units; --verbose lists all\n", last - end);
  return text;
}

}  // namespace

std::string FleetText(const Fleet& fleet, std::span<const CheckedUnit> units, bool verbose) {
  const size_t listed = fleet.deviating.size();
  const auto beyond = static_cast<size_t>(std::ranges::count(fleet.deviating, true, &DeviatingUnit::isBeyond));
  std::string text =
      Format("%zu of %zu units compared with each other\n", fleet.compared.size(), units.size()) +
      CopiesText(fleet.copies) +
      Format("\nUnits beyond the threshold of %g robust standard deviations: %zu\n", fleet.threshold, beyond);
  if (beyond > 0) text += UnitsText(fleet, units, 0, beyond, verbose);
  if (listed > beyond)
    text += "\nThe most deviating units within the threshold\n" + UnitsText(fleet, units, beyond, listed, verbose);
  return text + (verbose ? QuantitiesText(fleet) : "");
}

}  // namespace itoftool
