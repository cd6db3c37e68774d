// What a run tells its user on the terminal.
#ifndef ITOF_TOOL_REPORT_SUMMARY_H_
#define ITOF_TOOL_REPORT_SUMMARY_H_

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "report/framereport.h"

namespace itoftool {

/// A share (0..1) as text, e.g. "83.4 %".
std::string Percent(double share);

/// A bar on standard error, if that is a terminal; wiped out at the end of the object's life.
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

/// Prints the table that ends a run. Throws DataError if standard output does not take it.
void PrintSummary(const std::vector<FrameReport>& frames, const std::filesystem::path& directory);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_SUMMARY_H_
