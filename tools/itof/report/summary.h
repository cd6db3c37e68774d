// Prints the summary of a run.
#ifndef ITOF_TOOL_REPORT_SUMMARY_H_
#define ITOF_TOOL_REPORT_SUMMARY_H_

#include <filesystem>
#include <string>
#include <vector>

#include "report/framereport.h"

namespace itoftool {

/// Formats a share (0..1), e.g. "83.4 %".
std::string Percent(double share);

/// Prints the table at the end of a run.
void PrintSummary(const std::vector<FrameReport>& frames, const std::filesystem::path& directory);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_SUMMARY_H_
