// Defines the figures of one aligned frame. The JSON file and the terminal summary are made from them.
#ifndef ITOF_TOOL_REPORT_FRAMEREPORT_H_
#define ITOF_TOOL_REPORT_FRAMEREPORT_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "inspection/pixeltrace.h"

namespace itoftool {

/// One input and its results.
struct FrameReport {
  std::filesystem::path input;
  std::vector<std::string> outputs;  // file names in the output folder
  double milliseconds;               // time the library took
  double reached;                    // from ShareReached
  size_t aboveRange;                 // pixels above the largest depth code, treated as without depth
  std::optional<FateCounts> fates;   // with --report only
};

/// Returns the share (0..1) of aligned words that are not 0.
inline double ShareReached(const std::vector<uint16_t>& alignedWords) {
  const auto zeros = static_cast<double>(std::ranges::count(alignedWords, 0));
  return 1 - zeros / static_cast<double>(alignedWords.size());
}

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_FRAMEREPORT_H_
