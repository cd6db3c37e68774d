// Writes the check of one or several files as JSON, for programs.
#ifndef ITOF_TOOL_FLEET_JSON_H_
#define ITOF_TOOL_FLEET_JSON_H_

#include <optional>
#include <span>
#include <string>

#include "fleet/table.h"

namespace itoftool {

/// `rows` are those of the units. The fleet is null if there are too few units. Numbers that do not exist are null.
std::string CheckJson(std::span<const CheckedUnit> units, std::span<const UnitRow> rows,
                      const std::optional<Fleet>& fleet);

}  // namespace itoftool

#endif  // ITOF_TOOL_FLEET_JSON_H_
