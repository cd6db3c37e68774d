// Prints the progress and the summary of a run.
#ifndef ITOF_TOOL_REPORT_SUMMARY_H_
#define ITOF_TOOL_REPORT_SUMMARY_H_

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "report/framereport.h"

namespace itoftool {

/// Formats a share (0..1), e.g. "83.4 %".
std::string Percent(double share);

/// Shows a progress bar on standard error if that is a terminal and `off` is false. The destructor erases it.
class Progress {
 public:
  Progress(size_t total, bool off);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Show(size_t done) const;

 private:
  size_t total_;
  bool visible_;
};

/// Prints the table at the end of a run.
void PrintSummary(const std::vector<FrameReport>& frames, const std::filesystem::path& directory);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_SUMMARY_H_
