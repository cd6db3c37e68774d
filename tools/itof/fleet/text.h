// Writes what a fleet's comparison found, as text for a terminal.
#ifndef ITOF_TOOL_FLEET_TEXT_H_
#define ITOF_TOOL_FLEET_TEXT_H_

#include <span>
#include <string>

#include "fleet/fleet.h"

namespace itoftool {

/// `units` are those that the fleet was made from. Without `verbose`, long lists end early and the medians of all
/// quantities are left out.
std::string FleetText(const Fleet& fleet, std::span<const CheckedUnit> units, bool verbose);

}  // namespace itoftool

#endif  // ITOF_TOOL_FLEET_TEXT_H_
