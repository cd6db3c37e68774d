// Makes the table of a check of several files: one row for each.
#ifndef ITOF_TOOL_FLEET_TABLE_H_
#define ITOF_TOOL_FLEET_TABLE_H_

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "fleet/fleet.h"

namespace itoftool {

struct UnitRow {
  std::string path;
  size_t errors, warnings, notes;
  std::string worst, worstSeverity;    // name and severity of WorstFinding; empty if there is none
  std::string reason;                  // why the file cannot be read; empty if it can
  std::optional<double> effectPixels;  // LargestEffect
  std::optional<double> fleetPixels;   // the farthest position from the fleet's at any depth
};

/// One row for each unit. `fleet` is nothing if there are too few.
std::vector<UnitRow> MakeRows(std::span<const CheckedUnit> units, const std::optional<Fleet>& fleet);

/// The rows as a table for a terminal.
std::string TableText(std::span<const UnitRow> rows);

/// The rows as comma-separated values with a header; fields are quoted as in RFC 4180, lines end with a line feed.
std::string TableCsv(std::span<const UnitRow> rows);

}  // namespace itoftool

#endif  // ITOF_TOOL_FLEET_TABLE_H_
