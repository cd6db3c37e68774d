// The figures of one aligned frame, from which the JSON file and the terminal summary are made.
#ifndef ITOF_TOOL_REPORT_FRAMEREPORT_H_
#define ITOF_TOOL_REPORT_FRAMEREPORT_H_

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "inspection/pixeltrace.h"

namespace itoftool {

/// One input and what became of it.
struct FrameReport {
  std::filesystem::path input;
  std::vector<std::string> outputs;  // file names in the output folder
  double milliseconds;               // that the library took
  double reached;                    // share of the aux pixels, 0..1, whose aligned word is not 0
  size_t aboveRange;                 // pixels that counted as without depth, being above the largest code
  std::optional<FateCounts> fates;   // if a report was asked for
};

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_FRAMEREPORT_H_
