// Writes findings as JSON, for programs.
#ifndef ITOF_TOOL_CHECK_FINDINGSJSON_H_
#define ITOF_TOOL_CHECK_FINDINGSJSON_H_

#include <nlohmann/json.hpp>

#include "check/findings.h"

namespace itoftool {

/// A list with one object for each finding.
nlohmann::ordered_json FindingsJson(const Findings& findings);

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_FINDINGSJSON_H_
