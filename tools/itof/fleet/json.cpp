// Writes the check of one or several files as JSON, for programs.
#include "fleet/json.h"

#include <iterator>

#include "check/findingsjson.h"
#include "inspection/jsonvalues.h"

namespace itoftool {
namespace {

Json Optional(const std::optional<double>& value) { return value ? Number(*value) : Json(nullptr); }

Json UnitJson(const CheckedUnit& unit, const UnitRow& row) {
  return {{"file", row.path},
          {"errors", row.errors},
          {"warnings", row.warnings},
          {"notes", row.notes},
          {"worst", row.worst.empty() ? Json(nullptr) : Json(row.worst)},
          {"effect_pixels", Optional(row.effectPixels)},
          {"fleet_pixels", Optional(row.fleetPixels)},
          {"findings", FindingsJson(unit.findings)}};
}

Json MovesJson(const PerDepth<Spread>& moves) {
  Json list = Json::array();
  for (size_t i = 0; i < std::size(kCompareDepths); ++i) {
    list.push_back(AtDepth(kCompareDepths[i]));
    list.back().update(SpreadJson(moves[i]));
  }
  return list;
}

Json DeviatingJson(const DeviatingUnit& unit, const Fleet& fleet, const std::string& path) {
  Json deviations = Json::array();
  for (const Deviation& deviation : unit.deviations) {
    const FleetQuantity& quantity = fleet.quantities[deviation.quantity];
    deviations.push_back({{"quantity", quantity.name},
                          {"value", Number(deviation.value)},
                          {"median", Number(quantity.median)},
                          {"mad", Number(quantity.medianAbsoluteDeviation)},
                          {"deviation", Number(deviation.score)}});
  }
  return {{"file", path},
          {"beyond_threshold", unit.isBeyond},
          {"moved_pixels", MovesJson(fleet.moves[unit.unit])},
          {"deviations", deviations}};
}

Json FleetJson(const Fleet& fleet, std::span<const CheckedUnit> units) {
  Json copies = Json::array(), quantities = Json::array(), deviating = Json::array();
  for (const Copies& same : fleet.copies) copies.push_back({{"files", same.paths}, {"same_bytes", same.sameBytes}});
  for (const FleetQuantity& quantity : fleet.quantities) {
    quantities.push_back({{"quantity", quantity.name},
                          {"unit", quantity.unit},
                          {"median", Number(quantity.median)},
                          {"mad", Number(quantity.medianAbsoluteDeviation)},
                          {"compared", quantity.role != QuantityRole::kInformation}});
  }
  for (const DeviatingUnit& unit : fleet.deviating) {
    deviating.push_back(DeviatingJson(unit, fleet, units[fleet.compared[unit.unit]].path));
  }
  return {{"units_compared", fleet.compared.size()},
          {"threshold", fleet.threshold},
          {"identical", copies},
          {"quantities", quantities},
          {"deviating", deviating}};
}

}  // namespace

std::string CheckJson(std::span<const CheckedUnit> units, std::span<const UnitRow> rows,
                      const std::optional<Fleet>& fleet) {
  Json list = Json::array();
  for (size_t i = 0; i < units.size(); ++i) list.push_back(UnitJson(units[i], rows[i]));
  return JsonText({{"units", list}, {"fleet", fleet ? FleetJson(*fleet, units) : Json(nullptr)}});
}

}  // namespace itoftool
